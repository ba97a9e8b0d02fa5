// A radio button with a 24 x 24 ring (radius 13, border 2) and a 12 x 12 dot at 6,6 when checked.
// Its focus ring has the radius 6. Enter and Return check it.
import QtQuick
import QtQuick.Controls as QQC

QQC.RadioButton {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    hoverEnabled: true
    spacing: 12
    padding: 0

    Keys.onEnterPressed: { if (!root.checked) root.toggle() }
    Keys.onReturnPressed: { if (!root.checked) root.toggle() }

    indicator: Rectangle {
        id: ring
        objectName: "ring"
        implicitWidth: 24
        implicitHeight: 24
        x: root.leftPadding
        y: root.topPadding + (root.availableHeight - height) / 2
        radius: 13
        color: "transparent"
        border.width: 2
        border.color: !root.enabled ? (root.pal ? root.pal.contentDisabled : "gray")
                    : root.checked ? (root.pal ? root.pal.purplePrimary : "#9C9CFF")
                    : root.hovered ? (root.pal ? root.pal.contentSecondary : "#AFB5BC")
                    : (root.pal ? root.pal.contentBorder : "#29FFFFFF")

        Rectangle {
            objectName: "dot"
            x: 6
            y: 6
            width: 12
            height: 12
            radius: 7
            visible: root.checked
            color: root.enabled ? (root.pal ? root.pal.purplePrimary : "#9C9CFF")
                                : (root.pal ? root.pal.contentDisabled : "gray")
        }

        Outline {
            outlineRadius: 6
            visible: root.visualFocus
        }
    }

    contentItem: TextLabel {
        leftPadding: root.indicator.width + root.spacing
        text: root.text
        font.pixelSize: 14
        verticalAlignment: Text.AlignVCenter
        color: root.enabled ? (root.pal ? root.pal.contentPrimary : "white")
                            : (root.pal ? root.pal.contentDisabled : "gray")
    }

    RightClickedMouseArea {}
}
