// The kit's text: word-wrapped, 16 px, in the palette's primary content colour. Assistive technology
// reads it as static text, so a screen reader reads what the label says.
import QtQuick

Text {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    color: root.pal ? root.pal.contentPrimary : "white"
    font.family: "Halcyra Sans Text"
    font.pixelSize: 16
    wrapMode: Text.WordWrap

    Accessible.role: Accessible.StaticText
    Accessible.name: root.text
}
