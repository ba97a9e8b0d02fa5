// A toggle row: caption and description on the left, a sliding switch on the right. While
// `inProgress` the switch gives way to a small spinner; `statusImage`, when set, is shown before
// the switch. A click, Space, Enter or Return flips `checked` (not while in progress) and emits
// `toggled`.
import QtQuick
import QtQuick.Layouts
import "." as Kit

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string text: ""
    property string description: ""
    property bool checked: false
    property bool inProgress: false
    property url statusImage: ""

    signal toggled(bool checked)

    function toggle() {
        if (!root.enabled || root.inProgress)
            return
        root.checked = !root.checked
        root.toggled(root.checked)
    }

    implicitWidth: 400
    implicitHeight: Math.max(52, texts.implicitHeight + 16)
    activeFocusOnTab: true

    Keys.onSpacePressed: root.toggle()
    Keys.onEnterPressed: root.toggle()
    Keys.onReturnPressed: root.toggle()

    Outline {
        visible: root.activeFocus
    }

    RowLayout {
        anchors.fill: parent
        spacing: 12

        ColumnLayout {
            id: texts
            Layout.fillWidth: true
            spacing: 2

            TextLabel {
                Layout.fillWidth: true
                text: root.text
                color: root.enabled ? (root.pal ? root.pal.contentPrimary : "white")
                                    : (root.pal ? root.pal.contentDisabled : "gray")
            }

            TextLabel {
                Layout.fillWidth: true
                visible: root.description !== ""
                text: root.description
                font.pixelSize: 12
                color: root.pal ? root.pal.contentSecondary : "#AFB5BC"
            }
        }

        Image {
            objectName: "statusImage"
            visible: root.statusImage.toString() !== ""
            source: root.statusImage
            sourceSize.width: 20
            sourceSize.height: 20
        }

        Kit.Loader {
            objectName: "progress"
            visible: root.inProgress
            running: root.inProgress
            loaderSize: "Small"
        }

        Rectangle {
            id: track
            objectName: "track"
            visible: !root.inProgress
            implicitWidth: 40
            implicitHeight: 24
            radius: 12
            color: !root.enabled ? (root.pal ? root.pal.contentBackground : "black")
                 : root.checked ? (root.pal ? root.pal.purplePrimary : "#9C9CFF")
                 : (root.pal ? root.pal.contentBorder : "#29FFFFFF")

            Rectangle {
                width: 18
                height: 18
                radius: 9
                y: 3
                x: root.checked ? parent.width - width - 3 : 3
                color: root.pal ? root.pal.contentConstant : "white"

                Behavior on x {
                    NumberAnimation { duration: 150 }
                }
            }
        }
    }

    MouseArea {
        anchors.fill: parent
        onClicked: root.toggle()
    }

    RightClickedMouseArea {}
}
