import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// A settings-style window with its side menu and a page.
SpecimenFrame {
    title: "CommonWindow, CommonMenu"
    UiKitBase.CommonWindow {
        menuSource: "qrc:/ui_kit_gallery/parts/DemoMenu.qml"
        pageSource: "qrc:/ui_kit_gallery/parts/DemoPage.qml"
    }
}
