import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The calendar, open on a fixed date.
SpecimenFrame {
    title: "DatePicker"
    Item {
        width: 290; height: 260
        UiKitBase.DatePicker {
            id: picker
            selectedDate: new Date(2024, 4, 17)
        }
    }
    // A popup opens only inside a window, which the specimen has once it is shown.
    Timer { interval: 50; running: true; onTriggered: { picker.open() } }
}
