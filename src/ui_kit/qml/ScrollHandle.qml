// The grip of a scroll bar: 6 wide and fully rounded, in the primary content colour while the
// scrolled view has focus (`hasFocus`), in the secondary one otherwise.
import QtQuick

Rectangle {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property bool hasFocus: false

    implicitWidth: 6
    implicitHeight: 40
    width: 6
    radius: root.width / 2
    color: root.hasFocus ? (root.pal ? root.pal.contentPrimary : "white")
                         : (root.pal ? root.pal.contentSecondary : "#AFB5BC")
}
