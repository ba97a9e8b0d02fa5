// A tooltip in a top-level window of its own, for text that must leave the parent window:
// `showOnGlobalCoords(point)` places its top left corner at a point in screen coordinates and
// shows it. Text sits 16 px from the sides and 8 px from the top and bottom.
import QtQuick
import QtQuick.Window

Window {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string text: ""
    property real maxTextWidth: 400
    readonly property int horizontalMargin: 16
    readonly property int verticalMargin: 8

    function showOnGlobalCoords(point) {
        root.x = point.x
        root.y = point.y
        root.show()
    }

    flags: Qt.ToolTip | Qt.FramelessWindowHint | Qt.WindowDoesNotAcceptFocus
    color: "transparent"
    width: label.width + root.horizontalMargin * 2
    height: label.height + root.verticalMargin * 2

    Rectangle {
        anchors.fill: parent
        radius: 12
        color: root.pal ? root.pal.backgroundSecondary : "#242424"
    }

    TextLabel {
        id: label
        objectName: "text"
        x: root.horizontalMargin
        y: root.verticalMargin
        width: Math.min(label.implicitWidth, root.maxTextWidth)
        font.pixelSize: 14
        text: root.text
    }
}
