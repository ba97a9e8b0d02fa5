import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The close button at rest and with the focus ring, as after a Tab.
SpecimenFrame {
    title: "CloseButton"
    Row {
        spacing: 16
        UiKitBase.CloseButton {}
        UiKitBase.CloseButton { id: focused }
    }
    // Focus can be given only inside a window, which the specimen has once it is shown.
    Timer { interval: 50; running: true; onTriggered: focused.button.forceActiveFocus(Qt.TabFocusReason) }
}
