// A notice bubble: `message` in one line by default (`maxLinesCount`), elided at the right beyond
// `maxTextWidth`, with the error icon in front when `isError`.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property bool isError: false
    property string message: ""
    property int maxTextWidth: 700
    property int maxLinesCount: 1

    readonly property int horizontalPadding: 16
    readonly property int verticalPadding: label.lineCount > 1 ? 8 : 14

    implicitWidth: bubble.width
    implicitHeight: bubble.height

    Rectangle {
        id: bubble
        objectName: "bubble"
        width: row.width + root.horizontalPadding * 2
        height: row.height + root.verticalPadding * 2
        radius: 12
        color: root.pal ? root.pal.backgroundSecondary : "#171F1D"

        Row {
            id: row
            x: root.horizontalPadding
            y: root.verticalPadding
            spacing: 10

            Image {
                objectName: "errorIcon"
                anchors.verticalCenter: parent.verticalCenter
                visible: root.isError
                source: "qrc:/ui_kit/images/error_icon"
                sourceSize.width: 20
                sourceSize.height: 20
            }

            TextLabel {
                id: label
                objectName: "message"
                width: Math.min(label.implicitWidth, root.maxTextWidth)
                text: root.message
                font.pixelSize: 14
                elide: Text.ElideRight
                maximumLineCount: root.maxLinesCount
            }
        }
    }
}
