// The multi-line sibling of LineEdit, 405 wide: a scrollable text area with an error line and a
// hint line. `textUpdated(newText)` follows every edit; `clicked` follows a click into the area.
import QtQuick as QQ
import QtQuick
import QtQuick.Controls

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property alias text: area.text
    property alias placeholderText: area.placeholderText
    property alias readOnly: area.readOnly
    property string errorText: ""
    property string hintText: ""
    property int areaHeight: 120
    readonly property bool hasError: root.errorText !== ""

    signal textUpdated(string newText)
    signal clicked()

    width: 405
    implicitWidth: 405
    implicitHeight: column.implicitHeight

    Column {
        id: column
        width: parent.width
        spacing: 4

        ScrollView {
            id: scroll
            width: parent.width
            height: root.areaHeight

            ScrollBar.vertical: ScrollBar {
                visible: size < 1.0
                parent: scroll
                x: scroll.width - width - 4
                y: 8
                height: scroll.height - 16
                contentItem: ScrollHandle {
                    hasFocus: area.activeFocus
                }
            }

            TextArea {
                id: area
                objectName: "area"
                focus: true
                wrapMode: QQ.TextEdit.Wrap
                leftPadding: 16
                rightPadding: 16
                topPadding: 14
                bottomPadding: 14
                font.family: "Halcyra Sans Text"
                font.pixelSize: 16
                color: root.enabled ? (root.pal ? root.pal.contentPrimary : "white")
                                    : (root.pal ? root.pal.contentDisabled : "gray")
                placeholderTextColor: root.pal ? root.pal.contentSecondary : "#AFB5BC"
                selectionColor: root.pal ? root.pal.purpleSecondary : "#9C9CFF"

                onTextChanged: root.textUpdated(area.text)
                onPressed: root.clicked()

                background: Rectangle {
                    radius: 12
                    color: root.pal ? root.pal.contentBackground : "#1FFFFFFF"
                    border.width: root.hasError || area.activeFocus ? 2 : 0
                    border.color: root.hasError ? (root.pal ? root.pal.systemErrorPrimary : "#F22A41")
                                                : (root.pal ? root.pal.purplePrimary : "#9C9CFF")

                    Outline {
                        // Text fields have no visualFocus: the ring shows for keyboard focus only.
                    visible: area.activeFocus && (area.focusReason === Qt.TabFocusReason
                                                  || area.focusReason === Qt.BacktabFocusReason
                                                  || area.focusReason === Qt.ShortcutFocusReason)
                    }
                }

                RightClickedMouseArea {}
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
