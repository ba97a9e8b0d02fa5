// A 20 x 20 "more" icon that opens a 150-wide popup of text rows (48 high, 4 apart) from `model`,
// a list of strings. Choosing a row emits `clicked(menuIdx)` and closes the popup.
import QtQuick
import QtQuick.Controls

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property var model: []
    readonly property alias popup: popup

    signal clicked(menuIdx: int)

    implicitWidth: 20
    implicitHeight: 20
    activeFocusOnTab: true

    Keys.onSpacePressed: popup.open()
    Keys.onEnterPressed: popup.open()
    Keys.onReturnPressed: popup.open()

    Image {
        anchors.fill: parent
        source: "qrc:/ui_kit/images/more_menu"
        sourceSize.width: 20
        sourceSize.height: 20
    }

    Outline {
        visible: root.activeFocus
    }

    MouseArea {
        anchors.fill: parent
        onClicked: popup.open()
    }

    RightClickedMouseArea {}

    Popup {
        id: popup
        objectName: "popup"
        y: root.height + 4
        width: 150
        padding: 4
        focus: true

        background: Rectangle {
            radius: 12
            color: root.pal ? root.pal.backgroundSecondary : "#242424"
        }

        contentItem: Column {
            spacing: 4

            Repeater {
                model: root.model

                delegate: Rectangle {
                    required property int index
                    required property var modelData
                    width: 142
                    height: 48
                    radius: 8
                    color: rowArea.containsMouse || activeFocus
                           ? (root.pal ? root.pal.contentBackground : "#1FFFFFFF") : "transparent"
                    activeFocusOnTab: true
                    Keys.onReturnPressed: activate()
                    Keys.onEnterPressed: activate()

                    function activate() {
                        popup.close()
                        root.clicked(index)
                    }

                    TextLabel {
                        anchors.verticalCenter: parent.verticalCenter
                        x: 12
                        width: parent.width - 24
                        text: modelData
                        font.pixelSize: 14
                        elide: Text.ElideRight
                        wrapMode: Text.NoWrap
                    }

                    MouseArea {
                        id: rowArea
                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: parent.activate()
                    }
                }
            }
        }
    }
}
