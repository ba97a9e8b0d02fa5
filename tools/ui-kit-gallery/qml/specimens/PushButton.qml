import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The five looks of the button, a disabled one and one with a hint line.
SpecimenFrame {
    title: "PushButton"
    Row {
        spacing: 12
        UiKitBase.PushButton { text: "Normal"; state: "Normal" }
        UiKitBase.PushButton { text: "Light"; state: "Light" }
        UiKitBase.PushButton { text: "Alternative"; state: "Alternative" }
    }
    Row {
        spacing: 12
        UiKitBase.PushButton { text: "Transparent"; state: "Transparent" }
        UiKitBase.PushButton { text: "SystemWarning"; state: "SystemWarning" }
        UiKitBase.PushButton { text: "Disabled"; enabled: false }
    }
    Row {
        spacing: 12
        UiKitBase.PushButton { text: "Decline"; state: "Alternative"; fontPixelSize: 14; radius: 12; width: 132; height: 40 }
        UiKitBase.PushButton { text: "Approve"; state: "SystemWarning"; fontPixelSize: 14; radius: 12; width: 132; height: 40 }
        UiKitBase.PushButton { text: "With hint"; hintText: "Ctrl+S" }
    }
}
