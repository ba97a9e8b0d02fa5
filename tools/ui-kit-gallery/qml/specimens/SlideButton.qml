import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Toggle rows: off, on, in progress and with a status image.
SpecimenFrame {
    title: "SlideButton"
    UiKitBase.SlideButton { width: 420; text: "Remote access"; description: "Allow requests to manage this device" }
    UiKitBase.SlideButton { width: 420; text: "Sound"; checked: true }
    UiKitBase.SlideButton { width: 420; text: "Updating"; inProgress: true }
    UiKitBase.SlideButton { width: 420; text: "Network"; checked: true; statusImage: "qrc:/ui_kit/images/warning_icon" }
}
