import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// RoundedRect as painted: round, square and mixed corners, its defaults and its repaint.
Item {
    id: scene
    width: 400
    height: 300

    Component {
        id: rectComponent
        UiKitBase.RoundedRect {
            width: 120
            height: 60
            color: "#FF0000"
            radius: 20
        }
    }

    TestCase {
        name: "RoundedRect"
        when: windowShown

        function paintedImage(rect) {
            const canvas = findChild(rect, "canvas")
            tryVerify(() => canvas.available)
            waitForRendering(rect)
            return grabImage(rect)
        }

        function isFill(pixel) {
            return pixel.a > 0.95 && pixel.r > 0.95 && pixel.g < 0.05 && pixel.b < 0.05
        }

        function test_defaults() {
            const fresh = Qt.createQmlObject('import "qrc:/ui_kit/qml/base/" as UiKitBase; UiKitBase.RoundedRect { height: 30 }', scene)
            verify(Qt.colorEqual(fresh.color, "#80000000"))
            compare(fresh.radius, 10)
            fresh.height = 90
            compare(fresh.radius, 30)
            verify(fresh.drawTopLeftCorner && fresh.drawTopRightCorner && fresh.drawBottomRightCorner
                   && fresh.drawBottomLeftCorner)
            verify(Qt.colorEqual(fresh.borderColor, "transparent"))
            compare(fresh.borderWidth, 0)
            fresh.destroy()
        }

        function test_allCornersOffPaintsAPlainRectangle() {
            const rect = createTemporaryObject(rectComponent, scene, {
                drawTopLeftCorner: false, drawTopRightCorner: false,
                drawBottomRightCorner: false, drawBottomLeftCorner: false })
            const image = paintedImage(rect)
            verify(isFill(image.pixel(0, 0)), "top left")
            verify(isFill(image.pixel(119, 0)), "top right")
            verify(isFill(image.pixel(119, 59)), "bottom right")
            verify(isFill(image.pixel(0, 59)), "bottom left")
            verify(isFill(image.pixel(60, 30)), "centre")
        }

        function test_roundCornersLeaveTheCornersEmpty() {
            const image = paintedImage(createTemporaryObject(rectComponent, scene))
            // Outside the rounding the scene shows through.
            verify(!isFill(image.pixel(0, 0)), "top left")
            verify(!isFill(image.pixel(119, 0)), "top right")
            verify(!isFill(image.pixel(119, 59)), "bottom right")
            verify(!isFill(image.pixel(0, 59)), "bottom left")
            verify(isFill(image.pixel(60, 30)))
            verify(isFill(image.pixel(0, 30)), "middle of the left edge")
        }

        function test_squareRightCornersOnly() {
            const image = paintedImage(createTemporaryObject(rectComponent, scene, {
                drawTopRightCorner: false, drawBottomRightCorner: false }))
            verify(!isFill(image.pixel(0, 0)))
            verify(!isFill(image.pixel(0, 59)))
            verify(isFill(image.pixel(119, 0)))
            verify(isFill(image.pixel(119, 59)))
        }

        function test_repaintsOnAColourChange() {
            const rect = createTemporaryObject(rectComponent, scene)
            verify(isFill(paintedImage(rect).pixel(60, 30)))
            rect.color = "#0000FF"
            tryVerify(() => {
                waitForRendering(rect)
                const p = grabImage(rect).pixel(60, 30)
                return p.b > 0.95 && p.r < 0.05
            })
        }

        // The fill comes after the stroke and covers its inner half, so the border shows on a
        // transparent fill.
        function test_borderIsStrokedUnderTheFill() {
            const rect = createTemporaryObject(rectComponent, scene, {
                color: "transparent", borderColor: "#00FF00", borderWidth: 4,
                drawTopLeftCorner: false, drawTopRightCorner: false,
                drawBottomRightCorner: false, drawBottomLeftCorner: false })
            const image = paintedImage(rect)
            const edge = image.pixel(60, 0)
            verify(edge.g > 0.95 && edge.r < 0.05, "edge " + edge)
            const inside = image.pixel(60, 30)
            verify(!(inside.g > 0.95 && inside.r < 0.05), "inside " + inside)
            rect.color = "#FF0000"
            tryVerify(() => {
                waitForRendering(rect)
                return isFill(grabImage(rect).pixel(60, 0))
            })
        }
    }
}
