import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The page header. The client application would show its own avatar; the gallery lends one.
SpecimenFrame {
    title: "AppMenu"
    UiKitBase.AppMenu { width: 720; caption: "Settings"; avatarSource: "qrc:/ui_kit/images/hos_logo" }
}
