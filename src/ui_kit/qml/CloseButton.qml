// A 40 x 40 icon button that closes something. `activated` fires on a press of the inner button
// (Space), on Enter, on Return and on a mouse click. The inner button takes the focus.
import QtQuick
import QtQuick.Controls

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property int buttonSize: 40
    property int iconSize: 16
    property int radius: 12
    property url iconSource: "qrc:/ui_kit/images/close_icon"
    property color iconColor: "white"
    readonly property alias button: button

    signal activated()

    implicitWidth: root.buttonSize
    implicitHeight: root.buttonSize

    Button {
        id: button
        objectName: "closeButtonInner"
        anchors.fill: parent
        flat: true
        hoverEnabled: true
        padding: 0
        display: AbstractButton.IconOnly
        icon.source: root.iconSource
        icon.width: root.iconSize
        icon.height: root.iconSize
        icon.color: root.iconColor

        onPressed: root.activated()
        Keys.onEnterPressed: root.activated()
        Keys.onReturnPressed: root.activated()

        background: Rectangle {
            objectName: "background"
            radius: root.radius
            color: (button.hovered || button.activeFocus)
                   ? (root.pal ? root.pal.contentBorder : "#29FFFFFF")
                   : (root.pal ? root.pal.contentBackground : "#14FFFFFF")

            Outline {
                visible: button.visualFocus
            }
        }

        MouseArea {
            objectName: "clickArea"
            anchors.fill: parent
            onClicked: root.activated()
        }

        RightClickedMouseArea {}
    }
}
