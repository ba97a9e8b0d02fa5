// A read-only text view that is fed in pieces from outside (`appendText`, `clear`), in a rounded
// box (radius 8) with 16 px around the text. The view follows new text while it is scrolled to the
// end. `scrollChanged(position)` reports the scroll position from 0 (top) to 1 (end).
import QtQuick as QQ
import QtQuick
import QtQuick.Controls

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property int textMargin: 16
    readonly property alias text: body.text
    readonly property real position: flick.contentHeight > flick.height
                                     ? flick.contentY / (flick.contentHeight - flick.height) : 0

    signal scrollChanged(real position)

    function appendText(piece) {
        const atEnd = root.position >= 0.999 || flick.contentHeight <= flick.height
        body.text = body.text + piece
        if (atEnd)
            root.scrollToEnd()
    }

    function clear() {
        body.text = ""
        flick.contentY = 0
    }

    function scrollToEnd() {
        flick.contentY = Math.max(0, flick.contentHeight - flick.height)
    }

    implicitWidth: 405
    implicitHeight: 200
    activeFocusOnTab: true

    onPositionChanged: root.scrollChanged(root.position)

    Keys.onUpPressed: flick.contentY = Math.max(0, flick.contentY - 40)
    Keys.onDownPressed: flick.contentY = Math.max(0, Math.min(flick.contentHeight - flick.height,
                                                              flick.contentY + 40))

    Rectangle {
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
            x: root.width - width - 4
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
            wrapMode: QQ.TextEdit.Wrap
            font.family: "Halcyra Sans Text"
            font.pixelSize: 14
            color: root.pal ? root.pal.contentPrimary : "white"
        }
    }

    RightClickedMouseArea {}
}
