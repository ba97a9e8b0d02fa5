import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The two texts of the kit.
SpecimenFrame {
    title: "TextLabel, TextPromt"
    UiKitBase.TextLabel { width: 360; text: "TextLabel: the kit’s text, 16 px, wrapped at word boundaries when it is long." }
    UiKitBase.TextPromt { width: 360; text: "TextPromt: a prompt, 14 px, in the primary colour." }
}
