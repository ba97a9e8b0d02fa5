// The kit's text: word-wrapped, 16 px, in the palette's primary content colour.
import QtQuick

Text {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    color: root.pal ? root.pal.contentPrimary : "white"
    font.family: "Halcyra Sans Text"
    font.pixelSize: 16
    wrapMode: Text.WordWrap
}
