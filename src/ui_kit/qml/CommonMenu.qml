// The side menu of a settings-style window: one 52-high row (radius 12) for each entry of a menu
// model with the roles `name`, `id`, `widgetFromModel` and `componentUrlFromModel`. Choosing a row
// (click, Enter, Return, or selectPrevious()/selectNext()) makes it current and emits
// `itemActivated(pageUrl, pageIndex)`.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property alias model: list.model
    property alias currentIndex: list.currentIndex
    readonly property alias count: list.count

    signal itemActivated(url pageUrl, int pageIndex)

    function activate(index) {
        if (index < 0 || index >= list.count)
            return
        list.currentIndex = index
        const row = list.itemAtIndex(index)
        root.itemActivated(row ? row.pageUrl : "", index)
    }

    function selectPrevious() {
        root.activate(Math.max(0, list.currentIndex - 1))
    }

    function selectNext() {
        root.activate(Math.min(list.count - 1, list.currentIndex + 1))
    }

    implicitWidth: 318
    implicitHeight: 580

    ListView {
        id: list
        objectName: "list"
        anchors.fill: parent
        anchors.margins: 16
        spacing: 4
        clip: true
        focus: true
        activeFocusOnTab: true
        keyNavigationEnabled: true
        currentIndex: 0

        Keys.onReturnPressed: root.activate(list.currentIndex)
        Keys.onEnterPressed: root.activate(list.currentIndex)

        delegate: Rectangle {
            id: row
            required property int index
            required property string name
            required property var componentUrlFromModel
            readonly property url pageUrl: row.componentUrlFromModel ? row.componentUrlFromModel : ""

            width: ListView.view.width
            height: 52
            radius: 12
            color: row.ListView.isCurrentItem ? (root.pal ? root.pal.contentBorder : "#29FFFFFF")
                 : rowArea.containsMouse ? (root.pal ? root.pal.contentBackground : "#1FFFFFFF")
                 : "transparent"

            Outline {
                visible: row.ListView.isCurrentItem && list.activeFocus
            }

            TextLabel {
                anchors.verticalCenter: parent.verticalCenter
                x: 16
                width: parent.width - 32
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                text: row.name
            }

            MouseArea {
                id: rowArea
                anchors.fill: parent
                hoverEnabled: true
                onClicked: root.activate(row.index)
            }
        }
    }

    RightClickedMouseArea {
        onClicked: list.forceActiveFocus()
    }
}
