import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The close button at rest and with the focus ring.
SpecimenFrame {
    title: "CloseButton"
    Row {
        spacing: 16
        UiKitBase.CloseButton {}
        UiKitBase.CloseButton { id: focused; Component.onCompleted: focused.button.forceActiveFocus(Qt.TabFocusReason) }
    }
}
