// A rectangle whose four corners are rounded or square one by one, painted on a Canvas.
// It repaints when what it draws changes (colours, radius, corners, size); a change of the border
// width alone waits for the next of those.
import QtQuick

Item {
    id: root

    property color color: "#80000000"
    property real radius: root.height / 3
    property bool drawTopLeftCorner: true
    property bool drawTopRightCorner: true
    property bool drawBottomRightCorner: true
    property bool drawBottomLeftCorner: true
    property color borderColor: "transparent"
    property real borderWidth: 0

    onColorChanged: canvas.requestPaint()
    onRadiusChanged: canvas.requestPaint()
    onDrawTopLeftCornerChanged: canvas.requestPaint()
    onDrawTopRightCornerChanged: canvas.requestPaint()
    onDrawBottomRightCornerChanged: canvas.requestPaint()
    onDrawBottomLeftCornerChanged: canvas.requestPaint()
    onBorderColorChanged: canvas.requestPaint()
    onWidthChanged: canvas.requestPaint()
    onHeightChanged: canvas.requestPaint()

    Canvas {
        id: canvas
        objectName: "canvas"
        anchors.fill: parent

        onPaint: {
            const ctx = getContext("2d")
            ctx.reset()
            const w = width
            const h = height
            const r = Math.max(0, Math.min(root.radius, w / 2, h / 2))

            ctx.beginPath()
            ctx.moveTo(0, h / 2)
            if (root.drawTopLeftCorner)
                ctx.arcTo(0, 0, r, 0, r)
            else
                ctx.lineTo(0, 0)
            if (root.drawTopRightCorner)
                ctx.arcTo(w, 0, w, r, r)
            else
                ctx.lineTo(w, 0)
            if (root.drawBottomRightCorner)
                ctx.arcTo(w, h, w - r, h, r)
            else
                ctx.lineTo(w, h)
            if (root.drawBottomLeftCorner)
                ctx.arcTo(0, h, 0, h - r, r)
            else
                ctx.lineTo(0, h)
            ctx.closePath()

            // A canvas ignores a line width of 0 and keeps 1, so a zero border is not stroked at all.
            if (root.borderWidth > 0) {
                ctx.lineWidth = root.borderWidth
                ctx.strokeStyle = root.borderColor
                ctx.stroke()
            }
            ctx.fillStyle = root.color
            ctx.fill()
        }
    }
}
