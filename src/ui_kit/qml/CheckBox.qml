// A check box with a 20 x 20 box in the colours of PushButton's "Normal" look, framed in
// `contentBorder` while unchecked, and a tooltip (`tooltipText`) on hover. Enter and Return toggle it.
import QtQuick
import QtQuick.Controls as QQC

QQC.CheckBox {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string tooltipText: ""

    property color normalColor: root.pal ? root.pal.purplePrimary : "#9C9CFF"
    property color hoverColor: root.pal ? root.pal.purpleSubPrimary : "#8C8CFF"
    property color pressedColor: root.pal ? root.pal.purpleSecondary : "#9C9CFF"
    property color disabledColor: root.pal ? root.pal.contentBackground : "black"
    property color borderColor: root.pal ? root.pal.contentBorder : "#29FFFFFF"

    hoverEnabled: true
    spacing: 12
    padding: 0

    Keys.onEnterPressed: root.toggle()
    Keys.onReturnPressed: root.toggle()

    indicator: Rectangle {
        id: box
        objectName: "box"
        implicitWidth: 20
        implicitHeight: 20
        x: root.leftPadding
        y: root.topPadding + (root.availableHeight - height) / 2
        radius: 4
        color: !root.checked ? "transparent"
             : !root.enabled ? root.disabledColor
             : root.pressed ? root.pressedColor
             : root.hovered ? root.hoverColor
             : root.normalColor
        border.width: root.checked ? 0 : 2
        border.color: root.hovered && root.enabled ? root.hoverColor : root.borderColor

        Image {
            anchors.centerIn: parent
            visible: root.checked
            sourceSize.width: 12
            sourceSize.height: 12
            source: root.enabled ? "qrc:/ui_kit/images/check_mark_icon_enable"
                                 : "qrc:/ui_kit/images/check_mark_icon_disable"
        }

        Outline {
            visible: root.visualFocus
        }
    }

    contentItem: TextLabel {
        leftPadding: root.text !== "" ? root.indicator.width + root.spacing : root.indicator.width
        text: root.text
        font.pixelSize: 14
        verticalAlignment: Text.AlignVCenter
        color: root.enabled ? (root.pal ? root.pal.contentPrimary : "white")
                            : (root.pal ? root.pal.contentDisabled : "gray")
    }

    RightClickedMouseArea {}

    ControlsTooltip {
        text: root.tooltipText
        visible: root.hovered && root.tooltipText !== ""
    }
}
