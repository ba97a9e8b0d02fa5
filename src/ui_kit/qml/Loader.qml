// A spinning sprite. `loaderSize` "Big" plays 20 frames of 120 x 120 from loader_big, "Small"
// 8 frames of 24 x 24 from loader_small; the item is as large as one frame.
// `running` starts and stops it, `speed` is the time one frame stays up, in milliseconds.
import QtQuick

Item {
    id: root

    property string loaderSize: "Small"
    property alias running: sprite.running
    property alias speed: sprite.frameDuration

    readonly property bool isBig: root.loaderSize === "Big"

    width: sprite.frameWidth
    height: sprite.frameHeight
    implicitWidth: sprite.frameWidth
    implicitHeight: sprite.frameHeight

    AnimatedSprite {
        id: sprite
        objectName: "sprite"
        anchors.fill: parent
        source: root.isBig ? "qrc:/ui_kit/images/loader_big" : "qrc:/ui_kit/images/loader_small"
        frameWidth: root.isBig ? 120 : 24
        frameHeight: root.isBig ? 120 : 24
        frameCount: root.isBig ? 20 : 8
        frameDuration: 200
        loops: AnimatedSprite.Infinite
        running: true
        interpolate: false
    }
}
