import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The kit's spinner: size and frames by loaderSize.
Item {
    id: scene
    width: 400
    height: 300

    Component { id: loaderComponent; UiKitBase.Loader {} }

    TestCase {
        name: "Loader"
        when: windowShown

        function test_sizes_data() {
            return [ { tag: "Small", other: "Big", size: 24, frames: 8, image: "qrc:/ui_kit/images/loader_small" },
                     { tag: "Big", other: "Small", size: 120, frames: 20, image: "qrc:/ui_kit/images/loader_big" } ]
        }

        function test_sizes(data) {
            const spinner = createTemporaryObject(loaderComponent, scene, { loaderSize: data.other })
            spinner.loaderSize = data.tag
            compare(spinner.width, data.size)
            compare(spinner.height, data.size)
            const sprite = findChild(spinner, "sprite")
            compare(sprite.frameWidth, data.size)
            compare(sprite.frameCount, data.frames)
            compare(sprite.source.toString(), data.image)
            verify(sprite.running)
        }
    }
}
