import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Check boxes and radio buttons in their states.
SpecimenFrame {
    title: "CheckBox, RadioButton"
    Row {
        spacing: 24
        UiKitBase.CheckBox { text: "Unchecked" }
        UiKitBase.CheckBox { text: "Checked"; checked: true }
        UiKitBase.CheckBox { text: "Disabled"; checked: true; enabled: false }
    }
    Row {
        spacing: 24
        UiKitBase.RadioButton { text: "Off" }
        UiKitBase.RadioButton { text: "On"; checked: true }
        UiKitBase.RadioButton { text: "Disabled"; checked: true; enabled: false }
    }
}
