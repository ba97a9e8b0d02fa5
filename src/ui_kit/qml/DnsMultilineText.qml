// A list of servers (`servers`, strings), one per line, at most 3 lines. With more than 3 the
// third line ends in an ellipsis and the whole list shows in a tooltip while hovered.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property var servers: []
    readonly property int maxLines: 3
    readonly property bool truncated: root.servers.length > root.maxLines

    implicitWidth: 300
    implicitHeight: label.implicitHeight

    TextLabel {
        id: label
        objectName: "text"
        width: parent.width
        font.pixelSize: 14
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        maximumLineCount: root.maxLines
        text: root.truncated ? root.servers.slice(0, root.maxLines - 1).join("\n") + "\n"
                               + root.servers[root.maxLines - 1] + " …"
                             : root.servers.join("\n")
    }

    MouseArea {
        id: hoverArea
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.NoButton
    }

    ControlsTooltip {
        objectName: "tooltip"
        text: root.servers.join("\n")
        visible: root.truncated && hoverArea.containsMouse
    }
}
