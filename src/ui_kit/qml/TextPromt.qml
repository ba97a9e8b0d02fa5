// A prompt text: TextLabel's sibling at 14 px in the secondary content colour.
import QtQuick

Text {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    color: root.pal ? root.pal.contentSecondary : "#85FFFFFF"
    font.family: "Halcyra Sans Text"
    font.pixelSize: 14
    wrapMode: Text.WordWrap
}
