import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// A closed drop-down and one with its list open.
SpecimenFrame {
    title: "ComboBox, MoreMenu"
    width: 480
    height: 420
    UiKitBase.ComboBox { width: 405; placeholderText: "Choose a language" }
    Row {
        spacing: 24
        UiKitBase.ComboBox {
            id: open
            width: 300
            searchEnabled: true
            model: ["English", "Español", "Português", "Русский"]
            currentIndex: 0
        }
        UiKitBase.MoreMenu {
            id: more
            model: ["Rename", "Move", "Delete"]
        }
    }
    // A popup opens only inside a window, which the specimen has once it is shown.
    Timer { interval: 50; running: true; onTriggered: { open.popup.open(); more.popup.open() } }
}
