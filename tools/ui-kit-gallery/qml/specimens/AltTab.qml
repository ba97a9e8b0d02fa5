import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The application switcher with three applications.
SpecimenFrame {
    title: "AltTab"
    UiKitBase.AltTab {
        currentIndex: 1
        model: [
            { title: "Remote desktop", preview: "qrc:/ui_kit/images/main_logo_hc" },
            { title: "Settings", preview: "qrc:/ui_kit/images/logo_big" },
            { title: "System", preview: "qrc:/ui_kit/images/hos_logo" }
        ]
    }
}
