// The list of one application's windows: 300 wide with radius 20, one 292 x 52 row per entry of
// `model` (strings, the windows' titles), at most 13 rows visible and 732 high at most.
// Choosing a row emits `selectAppWindow(index)`.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property var model: []
    readonly property int maxItems: 13
    readonly property int itemWidth: 292
    readonly property int itemHeight: 52
    readonly property int itemSpacing: 4
    readonly property int margin: 4
    readonly property int maxHeight: 732
    readonly property int visibleItems: Math.min(list.count, root.maxItems)

    signal selectAppWindow(int index)

    width: 300
    implicitWidth: 300
    implicitHeight: Math.min(root.maxHeight,
                             root.visibleItems * root.itemHeight
                             + Math.max(0, root.visibleItems - 1) * root.itemSpacing
                             + root.margin * 2)

    Rectangle {
        anchors.fill: parent
        radius: 20
        color: root.pal ? root.pal.backgroundSecondary : "#242424"
    }

    ListView {
        id: list
        objectName: "list"
        anchors.fill: parent
        anchors.margins: root.margin
        spacing: root.itemSpacing
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        model: root.model

        Keys.onReturnPressed: root.selectAppWindow(list.currentIndex)
        Keys.onEnterPressed: root.selectAppWindow(list.currentIndex)

        delegate: Rectangle {
            id: row
            required property int index
            required property var modelData
            width: root.itemWidth
            height: root.itemHeight
            radius: 16
            color: rowArea.containsMouse || (row.ListView.isCurrentItem && list.activeFocus)
                   ? (root.pal ? root.pal.contentBackground : "#1FFFFFFF") : "transparent"

            TextLabel {
                anchors.verticalCenter: parent.verticalCenter
                x: 16
                width: parent.width - 32
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                font.pixelSize: 14
                text: row.modelData
            }

            MouseArea {
                id: rowArea
                anchors.fill: parent
                hoverEnabled: true
                onClicked: root.selectAppWindow(row.index)
            }
        }
    }
}
