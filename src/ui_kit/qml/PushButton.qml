// The kit's main button, 190 x 52 by default, in one of five looks chosen by `state`:
// "Normal", "Light", "Alternative", "Transparent" and "SystemWarning".
// The background is disabledColor when disabled, else pressedColor while pressed, else hoverColor
// while hovered, else normalColor. A second caption line (`hintText`) is created asynchronously,
// and only when the hint is not empty. Enter and Return act as a click. Assistive technology sees a
// push button named by its text whose Press action clicks it, as long as the button is enabled and
// its window is shown: a press through a stale reference to a hidden window clicks nothing.
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

Button {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    property alias fontPixelSize: caption.font.pixelSize
    property alias radius: background.radius
    readonly property real textLength: caption.contentWidth
    property string hintText: ""

    property color normalColor
    property color hoverColor
    property color pressedColor
    property color disabledColor: root.pal ? root.pal.contentBackground : "black"
    property color contentColor

    implicitWidth: 190
    implicitHeight: 52
    hoverEnabled: true
    state: "Normal"

    Keys.onEnterPressed: root.clicked()
    Keys.onReturnPressed: root.clicked()

    Accessible.role: Accessible.Button
    Accessible.name: root.text
    Accessible.onPressAction: {
        if (root.enabled && root.Window.window !== null && root.Window.window.visible)
            root.clicked()
    }

    background: Rectangle {
        id: background
        objectName: "background"
        radius: 16
        color: !root.enabled ? root.disabledColor
             : root.pressed ? root.pressedColor
             : root.hovered ? root.hoverColor
             : root.normalColor

        Outline {
            visible: root.visualFocus
        }
    }

    contentItem: ColumnLayout {
        spacing: 0

        TextLabel {
            id: caption
            objectName: "caption"
            // The button itself carries the caption's text for assistive technology.
            Accessible.ignored: true
            Layout.alignment: Qt.AlignHCenter | Qt.AlignVCenter
            Layout.maximumWidth: root.availableWidth
            text: root.text
            font.weight: Font.DemiBold
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.NoWrap
            elide: Text.ElideRight
            color: root.enabled ? root.contentColor
                                : (root.pal ? root.pal.contentDisabled : "gray")
        }

        Loader {
            id: hintLoader
            objectName: "hintLoader"
            Layout.alignment: Qt.AlignHCenter | Qt.AlignVCenter
            Layout.maximumWidth: root.availableWidth
            active: root.hintText !== ""
            visible: active
            asynchronous: true
            sourceComponent: TextLabel {
                objectName: "hint"
                Accessible.ignored: true
                text: root.hintText
                font.pixelSize: 12
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.NoWrap
                elide: Text.ElideRight
                color: root.pal ? root.pal.contentSecondary : "#AFB5BC"
            }
        }
    }

    RightClickedMouseArea {}

    // The fallback shades look swapped against the palette's own (hover lighter than normal);
    // they are the kit's established values and are kept.
    states: [
        State {
            name: "Normal"
            PropertyChanges {
                target: root
                normalColor: root.pal ? root.pal.purplePrimary : "#9C9CFF"
                hoverColor: root.pal ? root.pal.purpleSubPrimary : "#8C8CFF"
                pressedColor: root.pal ? root.pal.purpleSecondary : "#9C9CFF"
                contentColor: root.pal ? root.pal.contentPrimary : "white"
            }
        },
        State {
            name: "Light"
            PropertyChanges {
                target: root
                normalColor: root.pal ? root.pal.purpleBackground : "#9C9CFF"
                hoverColor: root.pal ? root.pal.purpleBorder : "#8C8CFF"
                pressedColor: root.pal ? root.pal.purpleDisabled : "#9C9CFF"
                contentColor: root.pal ? root.pal.purplePrimary : "#9C9CFF"
            }
        },
        State {
            name: "Alternative"
            PropertyChanges {
                target: root
                normalColor: root.pal ? root.pal.contentBackground : "#9C9CFF"
                hoverColor: root.pal ? root.pal.contentBorder : "#8C8CFF"
                pressedColor: root.pal ? root.pal.contentDisabled : "#9C9CFF"
                contentColor: root.pal ? root.pal.contentPrimary : "white"
            }
        },
        State {
            name: "Transparent"
            PropertyChanges {
                target: root
                normalColor: "transparent"
                hoverColor: root.pal ? root.pal.contentBackground : "#1FFFFFFF"
                pressedColor: root.pal ? root.pal.contentBorder : "#29FFFFFF"
                contentColor: root.pal ? root.pal.contentPrimary : "white"
            }
        },
        State {
            name: "SystemWarning"
            PropertyChanges {
                target: root
                normalColor: root.pal ? root.pal.systemWarningBackground : "#29F3BD3D"
                hoverColor: root.pal ? root.pal.contentBorder : "#8C8CFF"
                pressedColor: root.pal ? root.pal.contentDisabled : "#9C9CFF"
                contentColor: root.pal ? root.pal.systemWarningPrimary : "#F3BD3D"
            }
        }
    ]
}
