import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The kit's spinner: size and frames by loaderSize, running and speed.
Item {
    id: scene
    width: 400
    height: 300

    Component {
        id: loaderComponent
        UiKitBase.Loader {}
    }

    TestCase {
        name: "Loader"
        when: windowShown

        function test_sizes_data() {
            return [
                { tag: "Small", size: 24, frames: 8, image: "qrc:/ui_kit/images/loader_small" },
                { tag: "Big", size: 120, frames: 20, image: "qrc:/ui_kit/images/loader_big" },
            ]
        }

        function test_sizes(data) {
            const spinner = createTemporaryObject(loaderComponent, scene, { loaderSize: data.tag })
            compare(spinner.width, data.size)
            compare(spinner.height, data.size)
            const sprite = findChild(spinner, "sprite")
            compare(sprite.frameWidth, data.size)
            compare(sprite.frameHeight, data.size)
            compare(sprite.frameCount, data.frames)
            compare(sprite.source.toString(), data.image)
            compare(sprite.loops, AnimatedSprite.Infinite)
        }

        function test_switchingSizeResizes() {
            const spinner = createTemporaryObject(loaderComponent, scene, { loaderSize: "Small" })
            spinner.loaderSize = "Big"
            compare(spinner.width, 120)
            spinner.loaderSize = "Small"
            compare(spinner.width, 24)
        }

        function test_runsAndAdvances() {
            const spinner = createTemporaryObject(loaderComponent, scene, { loaderSize: "Small" })
            const sprite = findChild(spinner, "sprite")
            compare(spinner.speed, 200)
            verify(spinner.running)
            spinner.speed = 20
            const first = sprite.currentFrame
            tryVerify(() => sprite.currentFrame !== first, 3000)
            spinner.running = false
            verify(!sprite.running)
        }
    }
}
