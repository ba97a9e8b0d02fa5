// A prompt text: TextLabel at 14 px, with its own fallback colour for when no palette exists.
import QtQuick

Text {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    color: root.pal ? root.pal.contentPrimary : "#85FFFFFF"
    font.family: "Halcyra Sans Text"
    font.pixelSize: 14
    wrapMode: Text.WordWrap
}
