// A settings-style frame of 1018 x 580: an optional left menu (318 wide) loaded from `menuSource`,
// a 700 x 580 page loaded from `pageSource` while `isVisible`, and a close button in the top right
// corner. Escape activates the close button, which emits `closeActivated`.
// Alt+PageUp and Alt+PageDown go to the menu item through its selectPrevious()/selectNext()
// functions, when it has them.
// Menu and page are placed side by side by hand: a row layout would break the focus chain.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property url menuSource: ""
    property url pageSource: ""
    property bool isVisible: true
    readonly property alias menuItem: menuLoader.item
    readonly property alias pageItem: pageLoader.item
    readonly property alias closeButton: closeButton

    signal closeActivated()

    implicitWidth: 1018
    implicitHeight: 580

    Keys.onEscapePressed: closeButton.activated()
    Keys.onPressed: (event) => {
        if (!(event.modifiers & Qt.AltModifier) || !menuLoader.item)
            return
        if (event.key === Qt.Key_PageUp && typeof menuLoader.item.selectPrevious === "function") {
            menuLoader.item.selectPrevious()
            event.accepted = true
        } else if (event.key === Qt.Key_PageDown && typeof menuLoader.item.selectNext === "function") {
            menuLoader.item.selectNext()
            event.accepted = true
        }
    }

    Rectangle {
        objectName: "background"
        anchors.fill: parent
        radius: 16
        color: root.pal ? root.pal.backgroundBase : "#D6212529"
    }

    RoundedRect {
        id: menuBackground
        objectName: "menuBackground"
        width: 318
        height: root.height
        radius: 16
        color: root.pal ? root.pal.backgroundPrimary : "black"
        drawTopRightCorner: false
        drawBottomRightCorner: false
        visible: root.menuSource.toString() !== ""

        Loader {
            id: menuLoader
            anchors.fill: parent
            asynchronous: true
            source: root.menuSource
        }
    }

    Item {
        id: page
        objectName: "page"
        x: 318
        width: 700
        height: 580

        Loader {
            id: pageLoader
            anchors.fill: parent
            asynchronous: true
            source: root.isVisible ? root.pageSource : ""
        }
    }

    CloseButton {
        id: closeButton
        anchors.top: parent.top
        anchors.right: parent.right
        anchors.topMargin: 8
        anchors.rightMargin: 8

        onActivated: root.closeActivated()
    }
}
