import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Input fields: empty with a placeholder, filled with a hint, with an error, and multi-line.
SpecimenFrame {
    title: "LineEdit, TextEdit"
    UiKitBase.LineEdit { width: 405; placeholderText: "Server address" }
    UiKitBase.LineEdit { width: 405; text: "10.0.0.1"; hintText: "IPv4 or IPv6 address" }
    UiKitBase.LineEdit { width: 405; text: "10.0.0.300"; errorText: "Not a valid address" }
    UiKitBase.TextEdit { areaHeight: 96; text: "Several lines of text\nin the multi-line field"; hintText: "At most 512 characters" }
}
