// A drop-down list. `model` is a list of strings; `searchEnabled` adds a filter field with a
// magnifier at the top of the list. Choosing an entry sets `currentIndex` (an index of the full
// model) and emits `activated(index)`. Enter, Return and Space open the list.
import QtQuick
import QtQuick.Controls

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property var model: []
    property int currentIndex: -1
    property string placeholderText: ""
    property bool searchEnabled: false
    property int maxPopupHeight: 300
    readonly property string currentText: root.currentIndex >= 0 && root.currentIndex < root.model.length
                                          ? root.model[root.currentIndex] : ""
    readonly property alias popup: popup

    signal activated(int index)

    function select(index) {
        root.currentIndex = index
        popup.close()
        root.activated(index)
    }

    implicitWidth: 405
    implicitHeight: 52
    activeFocusOnTab: true

    Keys.onSpacePressed: popup.open()
    Keys.onEnterPressed: popup.open()
    Keys.onReturnPressed: popup.open()

    Rectangle {
        id: field
        objectName: "field"
        anchors.fill: parent
        radius: 12
        color: area.containsMouse || popup.visible
               ? (root.pal ? root.pal.contentBorder : "#29FFFFFF")
               : (root.pal ? root.pal.contentBackground : "#1FFFFFFF")

        Outline {
            visible: root.activeFocus
        }

        TextLabel {
            anchors.left: parent.left
            anchors.leftMargin: 16
            anchors.right: indicator.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            text: root.currentText !== "" ? root.currentText : root.placeholderText
            color: !root.enabled ? (root.pal ? root.pal.contentDisabled : "gray")
                 : root.currentText !== "" ? (root.pal ? root.pal.contentPrimary : "white")
                 : (root.pal ? root.pal.contentSecondary : "#AFB5BC")
        }

        Image {
            id: indicator
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            source: "qrc:/ui_kit/images/combobox/indicator_icon"
            sourceSize.width: 16
            sourceSize.height: 16
            rotation: popup.visible ? 180 : 0
        }
    }

    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: popup.visible ? popup.close() : popup.open()
    }

    RightClickedMouseArea {}

    Popup {
        id: popup
        objectName: "popup"
        y: root.height + 4
        width: root.width
        height: Math.min(root.maxPopupHeight, content.implicitHeight + topPadding + bottomPadding)
        padding: 4
        focus: true

        onOpened: {
            search.text = ""
            if (root.searchEnabled)
                search.forceActiveFocus()
            else
                list.forceActiveFocus()
        }

        background: Rectangle {
            radius: 12
            color: root.pal ? root.pal.backgroundSecondary : "#242424"
        }

        contentItem: Column {
            id: content
            spacing: 4

            TextField {
                id: search
                objectName: "search"
                width: parent.width
                height: 40
                visible: root.searchEnabled
                leftPadding: 40
                font.family: "Halcyra Sans Text"
                font.pixelSize: 14
                color: root.pal ? root.pal.contentPrimary : "white"
                background: Rectangle {
                    radius: 8
                    color: root.pal ? root.pal.contentBackground : "#1FFFFFFF"
                }
                Keys.onDownPressed: list.forceActiveFocus()

                Image {
                    anchors.left: parent.left
                    anchors.leftMargin: 12
                    anchors.verticalCenter: parent.verticalCenter
                    source: "qrc:/ui_kit/images/combobox/magnifier_icon"
                    sourceSize.width: 16
                    sourceSize.height: 16
                }
            }

            ListView {
                id: list
                objectName: "list"
                width: parent.width
                height: Math.min(contentHeight, root.maxPopupHeight - (search.visible ? 52 : 8))
                implicitHeight: contentHeight
                clip: true
                keyNavigationEnabled: true
                model: root.model.map((text, index) => ({ "text": text, "index": index }))
                    .filter(entry => search.text === ""
                            || entry.text.toLowerCase().indexOf(search.text.toLowerCase()) >= 0)

                Keys.onReturnPressed: if (currentItem) root.select(currentItem.sourceIndex)
                Keys.onEnterPressed: if (currentItem) root.select(currentItem.sourceIndex)

                delegate: Rectangle {
                    required property var modelData
                    readonly property int sourceIndex: modelData.index
                    width: ListView.view.width
                    height: 44
                    radius: 8
                    color: rowArea.containsMouse || ListView.isCurrentItem
                           ? (root.pal ? root.pal.contentBackground : "#1FFFFFFF") : "transparent"

                    TextLabel {
                        anchors.verticalCenter: parent.verticalCenter
                        x: 12
                        width: parent.width - 24
                        wrapMode: Text.NoWrap
                        elide: Text.ElideRight
                        font.pixelSize: 14
                        text: modelData.text
                    }

                    MouseArea {
                        id: rowArea
                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: root.select(parent.sourceIndex)
                    }
                }
            }
        }
    }
}
