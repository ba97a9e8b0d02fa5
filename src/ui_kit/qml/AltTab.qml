// The application switcher overlay: a row of 340 x 245 thumbnails (a 191-high preview over the
// title), 15 apart and 15 from the edge. `model` holds objects with `title` and `preview` (url).
// Tab/Right and Backtab/Left move the selection; Return or releasing Alt selects the current
// application (`selectApp(index)`) and hides the switcher (`hideAltTab`); Escape only hides it.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property var model: []
    property int currentIndex: 0
    readonly property int thumbnailWidth: 340
    readonly property int thumbnailHeight: 245
    readonly property int imageHeight: 191
    readonly property int margin: 15
    readonly property int spacing: 15

    signal hideAltTab()
    signal selectApp(int index)

    function step(delta) {
        const count = root.model.length
        if (count === 0)
            return
        root.currentIndex = (root.currentIndex + delta + count) % count
    }

    function accept() {
        if (root.model.length > 0)
            root.selectApp(root.currentIndex)
        root.hideAltTab()
    }

    implicitWidth: row.width + root.margin * 2
    implicitHeight: root.thumbnailHeight + root.margin * 2
    focus: true

    Keys.onTabPressed: root.step(1)
    Keys.onBacktabPressed: root.step(-1)
    Keys.onRightPressed: root.step(1)
    Keys.onLeftPressed: root.step(-1)
    Keys.onReturnPressed: root.accept()
    Keys.onEnterPressed: root.accept()
    Keys.onEscapePressed: root.hideAltTab()
    Keys.onReleased: (event) => {
        if (event.key === Qt.Key_Alt)
            root.accept()
    }

    Rectangle {
        anchors.fill: parent
        radius: 20
        color: root.pal ? root.pal.backgroundSecondary : "#242424"
    }

    Row {
        id: row
        x: root.margin
        y: root.margin
        spacing: root.spacing

        Repeater {
            model: root.model

            delegate: Rectangle {
                id: thumbnail
                required property int index
                required property var modelData
                width: root.thumbnailWidth
                height: root.thumbnailHeight
                radius: 12
                color: "transparent"
                border.width: 2
                border.color: thumbnail.index === root.currentIndex
                              ? (root.pal ? root.pal.contentSubPrimary : "white") : "transparent"

                Rectangle {
                    x: 4
                    y: 4
                    width: parent.width - 8
                    height: root.imageHeight
                    radius: 8
                    clip: true
                    color: root.pal ? root.pal.contentBackground : "#1FFFFFFF"

                    Image {
                        anchors.fill: parent
                        fillMode: Image.PreserveAspectCrop
                        source: thumbnail.modelData.preview ? thumbnail.modelData.preview : ""
                    }
                }

                TextLabel {
                    x: 12
                    y: root.imageHeight + 12
                    width: parent.width - 24
                    wrapMode: Text.NoWrap
                    elide: Text.ElideRight
                    font.pixelSize: 14
                    text: thumbnail.modelData.title ? thumbnail.modelData.title : ""
                }

                MouseArea {
                    anchors.fill: parent
                    onClicked: {
                        root.currentIndex = thumbnail.index
                        root.accept()
                    }
                }
            }
        }
    }
}
