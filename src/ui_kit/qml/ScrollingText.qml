// Read-only text in a rounded box (radius 8) that scrolls when it is longer than the box, with
// 24 px around the text. Up, Down, PageUp and PageDown scroll while it has the focus.
import QtQuick as QQ
import QtQuick
import QtQuick.Controls

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string text: ""
    property int textMargin: 24

    implicitWidth: 405
    implicitHeight: 200
    activeFocusOnTab: true

    Keys.onUpPressed: flick.flick(0, 800)
    Keys.onDownPressed: flick.flick(0, -800)
    Keys.onPressed: (event) => {
        if (event.key === Qt.Key_PageUp) {
            flick.contentY = Math.max(0, flick.contentY - flick.height)
            event.accepted = true
        } else if (event.key === Qt.Key_PageDown) {
            flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height,
                                                  flick.contentY + flick.height))
            event.accepted = true
        }
    }

    Rectangle {
        id: box
        anchors.fill: parent
        radius: 8
        color: root.pal ? root.pal.contentBackground : "#1FFFFFFF"

        Outline {
            visible: root.activeFocus
        }
    }

    Flickable {
        id: flick
        objectName: "flickable"
        anchors.fill: parent
        anchors.margins: root.textMargin
        clip: true
        contentWidth: width
        contentHeight: body.contentHeight
        boundsBehavior: Flickable.StopAtBounds

        ScrollBar.vertical: ScrollBar {
            visible: size < 1.0
            parent: root
            x: root.width - width - 8
            y: 8
            height: root.height - 16
            contentItem: ScrollHandle {
                hasFocus: root.activeFocus
            }
        }

        QQ.TextEdit {
            id: body
            objectName: "body"
            width: flick.width
            readOnly: true
            selectByMouse: false
            wrapMode: QQ.TextEdit.Wrap
            text: root.text
            font.family: "Halcyra Sans Text"
            font.pixelSize: 14
            color: root.pal ? root.pal.contentPrimary : "white"
        }
    }

    RightClickedMouseArea {}
}
