import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Task bar buttons with no, one and several windows, and the window list.
SpecimenFrame {
    title: "AppButton, AppWindows"
    Row {
        spacing: 12
        UiKitBase.AppButton { iconSource: "qrc:/ui_kit/images/logo_hc"; count: 0 }
        UiKitBase.AppButton { iconSource: "qrc:/ui_kit/images/hos_logo"; count: 1 }
        UiKitBase.AppButton { id: focused; iconSource: "qrc:/ui_kit/images/settings_gear"; count: 3; Component.onCompleted: focused.forceActiveFocus() }
    }
    UiKitBase.AppWindows { model: ["Connection settings", "Display", "About this device"] }
}
