// A task bar button: a 40 x 40 icon framed in white while focused, over an indicator of how many
// windows the application has (none, one dash, or two dashes for more than one).
// Tab and Backtab flip `focus` and leave the event unaccepted so that the key goes on to the
// task bar. Return emits `clicked` with the plain value Qt.LeftButton as its argument, where a
// mouse click passes the mouse event.
import QtQuick

Item {
    id: root

    property url iconSource: ""
    property int count: 0

    signal entered()
    signal exited()
    signal clicked(var mouse)

    width: 40
    implicitWidth: 40
    implicitHeight: column.height

    onVisibleChanged: {
        if (!root.visible)
            root.focus = false
    }

    Keys.onTabPressed: (event) => {
        root.focus = !root.focus
        event.accepted = false
    }
    Keys.onBacktabPressed: (event) => {
        root.focus = !root.focus
        event.accepted = false
    }
    Keys.onReturnPressed: root.clicked(Qt.LeftButton)

    Column {
        id: column
        width: 40

        Item {
            width: 40
            height: 4
        }

        Rectangle {
            id: frame
            objectName: "frame"
            width: 40
            height: 40
            radius: 12
            color: "transparent"
            border.width: 2
            border.color: root.activeFocus ? "white" : "transparent"

            Image {
                anchors.centerIn: parent
                width: 28
                height: 28
                sourceSize.width: 28
                sourceSize.height: 28
                source: root.iconSource
                fillMode: Image.PreserveAspectFit
            }
        }

        Item {
            width: 40
            height: 2
        }

        Item {
            objectName: "indicator"
            width: 40
            height: 2

            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                spacing: 2

                Repeater {
                    model: Math.min(Math.max(root.count, 0), 2)

                    Rectangle {
                        width: 8
                        height: 2
                        color: "#80FFFFFF"
                    }
                }
            }
        }
    }

    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        acceptedButtons: Qt.LeftButton | Qt.RightButton

        onEntered: root.entered()
        onExited: root.exited()
        onClicked: (mouse) => root.clicked(mouse)
    }
}
