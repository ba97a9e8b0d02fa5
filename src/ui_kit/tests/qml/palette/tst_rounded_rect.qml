import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// RoundedRect as painted: round corners, all corners off, mixed corners.
Item {
    id: scene
    width: 400
    height: 300

    Component {
        id: rectComponent
        UiKitBase.RoundedRect { width: 120; height: 60; color: "#FF0000"; radius: 20 }
    }

    TestCase {
        name: "RoundedRect"
        when: windowShown

        function test_corners_data() {
            return [ { tag: "round", corners: {}, square: [false, false, false, false] },
                     { tag: "allOff", corners: { drawTopLeftCorner: false, drawTopRightCorner: false,
                                                 drawBottomRightCorner: false, drawBottomLeftCorner: false },
                       square: [true, true, true, true] },
                     { tag: "rightOff", corners: { drawTopRightCorner: false, drawBottomRightCorner: false },
                       square: [false, true, true, false] } ]
        }

        function test_corners(data) {
            const rect = createTemporaryObject(rectComponent, scene, data.corners)
            tryVerify(() => findChild(rect, "canvas").available)
            waitForRendering(rect)
            const image = grabImage(rect)
            const isFill = (p) => p.a > 0.95 && p.r > 0.95 && p.g < 0.05 && p.b < 0.05
            const points = [[0, 0], [119, 0], [119, 59], [0, 59]]
            for (let i = 0; i < 4; ++i)
                compare(isFill(image.pixel(points[i][0], points[i][1])), data.square[i], "corner " + i)
            verify(isFill(image.pixel(60, 30)), "centre")
            verify(isFill(image.pixel(0, 30)), "middle of the left edge")
        }
    }
}
