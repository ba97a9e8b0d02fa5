// A single-line input with a reset button, an error line (`errorText`, shown instead of the hint
// when not empty) and a hint line (`hintText`). `tooltipText` shows above the field, 4 px away,
// while it is hovered. The field takes the focus of this scope.
import QtQuick
import QtQuick.Controls

FocusScope {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property alias text: field.text
    property alias placeholderText: field.placeholderText
    property alias echoMode: field.echoMode
    property alias validator: field.validator
    property alias maximumLength: field.maximumLength
    property alias readOnly: field.readOnly
    property string errorText: ""
    property string hintText: ""
    property string tooltipText: ""
    property bool resetButtonEnabled: true
    readonly property bool hasError: root.errorText !== ""
    readonly property int tooltipMargin: 4

    signal accepted()
    signal textEdited()

    implicitWidth: 405
    implicitHeight: column.implicitHeight

    Column {
        id: column
        width: parent.width
        spacing: 4

        TextField {
            id: field
            objectName: "field"
            width: parent.width
            height: 52
            focus: true
            leftPadding: 16
            rightPadding: resetButton.visible ? resetButton.width + 16 : 16
            font.family: "Halcyra Sans Text"
            font.pixelSize: 16
            color: root.enabled ? (root.pal ? root.pal.contentPrimary : "white")
                                : (root.pal ? root.pal.contentDisabled : "gray")
            placeholderTextColor: root.pal ? root.pal.contentSecondary : "#AFB5BC"
            selectionColor: root.pal ? root.pal.purpleSecondary : "#9C9CFF"
            selectedTextColor: "white"
            hoverEnabled: true

            onAccepted: root.accepted()
            onTextEdited: root.textEdited()

            background: Rectangle {
                radius: 12
                color: root.pal ? root.pal.contentBackground : "#1FFFFFFF"
                border.width: root.hasError || field.activeFocus ? 2 : 0
                border.color: root.hasError ? (root.pal ? root.pal.systemErrorPrimary : "#F22A41")
                                            : (root.pal ? root.pal.purplePrimary : "#9C9CFF")

                Outline {
                    // Text fields have no visualFocus: the ring shows for keyboard focus only.
                    visible: field.activeFocus && (field.focusReason === Qt.TabFocusReason
                                                  || field.focusReason === Qt.BacktabFocusReason
                                                  || field.focusReason === Qt.ShortcutFocusReason)
                }
            }

            Item {
                id: resetButton
                objectName: "resetButton"
                anchors.right: parent.right
                anchors.rightMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                width: 32
                height: 32
                visible: root.resetButtonEnabled && field.text !== "" && !field.readOnly && root.enabled

                Image {
                    anchors.centerIn: parent
                    source: "qrc:/ui_kit/images/lineedit/reset_text"
                    sourceSize.width: 16
                    sourceSize.height: 16
                }

                MouseArea {
                    anchors.fill: parent
                    onClicked: {
                        field.clear()
                        field.forceActiveFocus()
                        root.textEdited()
                    }
                }
            }

            RightClickedMouseArea {}

            ControlsTooltip {
                text: root.tooltipText
                y: -implicitHeight - root.tooltipMargin
                visible: field.hovered && root.tooltipText !== ""
            }
        }

        TextLabel {
            objectName: "errorLine"
            width: parent.width
            visible: root.hasError
            text: root.errorText
            font.pixelSize: 12
            color: root.pal ? root.pal.systemErrorPrimary : "#F22A41"
        }

        TextLabel {
            objectName: "hintLine"
            width: parent.width
            visible: !root.hasError && root.hintText !== ""
            text: root.hintText
            font.pixelSize: 12
            color: root.pal ? root.pal.contentSecondary : "#AFB5BC"
        }
    }
}
