import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The page of the CommonWindow specimen.
Column {
    x: 32
    y: 32
    spacing: 16

    UiKitBase.TextLabel { text: "Network"; font.pixelSize: 24 }
    UiKitBase.LineEdit { width: 405; text: "10.0.0.1"; hintText: "Server address" }
    UiKitBase.SlideButton { width: 405; text: "Use a proxy"; checked: true }
    UiKitBase.PushButton { text: "Save" }
}
