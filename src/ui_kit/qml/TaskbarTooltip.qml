// A tooltip bubble with an arrow, drawn on a Canvas. The arrow (6 high) sits below the bubble for
// ArrowDirection.Down and above it for ArrowDirection.Up; the transposed form puts it on the left
// (Up) or the right (Down) edge instead, for a vertical task bar. Showing and hiding fade over
// 400 ms between the states "Visible" and "Invisible".
import QtQuick

Item {
    id: root

    enum ArrowDirection {
        Down,
        Up
    }

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string text: ""
    property int arrowDirection: TaskbarTooltip.ArrowDirection.Down
    property bool transposed: false
    property bool shown: false
    property real radius: 12
    property real maxTextWidth: 400
    property real arrowOffset: -1
    property color backgroundColor: root.pal ? root.pal.backgroundSecondary : "#242424"
    property color textColor: root.pal ? root.pal.contentPrimary : "white"

    readonly property int triangleHeight: 6
    readonly property int horizontalPadding: 12
    readonly property int verticalPadding: 8

    implicitWidth: label.width + root.horizontalPadding * 2 + (root.transposed ? root.triangleHeight : 0)
    implicitHeight: label.height + root.verticalPadding * 2 + (root.transposed ? 0 : root.triangleHeight)
    width: implicitWidth
    height: implicitHeight

    state: root.shown ? "Visible" : "Invisible"
    states: [
        State {
            name: "Visible"
            PropertyChanges { target: root; opacity: 1.0; visible: true }
        },
        State {
            name: "Invisible"
            PropertyChanges { target: root; opacity: 0.0; visible: false }
        }
    ]
    transitions: [
        Transition {
            from: "Invisible"
            to: "Visible"
            SequentialAnimation {
                PropertyAction { property: "visible" }
                NumberAnimation { property: "opacity"; duration: 400 }
            }
        },
        Transition {
            from: "Visible"
            to: "Invisible"
            SequentialAnimation {
                NumberAnimation { property: "opacity"; duration: 400 }
                PropertyAction { property: "visible" }
            }
        }
    ]

    onBackgroundColorChanged: canvas.requestPaint()
    onArrowDirectionChanged: canvas.requestPaint()
    onTransposedChanged: canvas.requestPaint()
    onRadiusChanged: canvas.requestPaint()
    onArrowOffsetChanged: canvas.requestPaint()

    Canvas {
        id: canvas
        anchors.fill: parent
        onWidthChanged: requestPaint()
        onHeightChanged: requestPaint()

        onPaint: {
            const ctx = getContext("2d")
            ctx.reset()
            const t = root.triangleHeight
            const arrowFirst = root.arrowDirection === TaskbarTooltip.ArrowDirection.Up
            // The bubble's own rectangle, leaving room for the arrow on its side.
            let bx = 0, by = 0, bw = width, bh = height
            if (root.transposed) {
                bw -= t
                if (arrowFirst) bx = t
            } else {
                bh -= t
                if (arrowFirst) by = t
            }
            const r = Math.min(root.radius, bw / 2, bh / 2)
            ctx.fillStyle = root.backgroundColor
            ctx.beginPath()
            ctx.moveTo(bx + r, by)
            ctx.arcTo(bx + bw, by, bx + bw, by + bh, r)
            ctx.arcTo(bx + bw, by + bh, bx, by + bh, r)
            ctx.arcTo(bx, by + bh, bx, by, r)
            ctx.arcTo(bx, by, bx + bw, by, r)
            ctx.closePath()
            ctx.fill()

            ctx.beginPath()
            if (root.transposed) {
                const cy = root.arrowOffset >= 0 ? root.arrowOffset : by + bh / 2
                const edge = arrowFirst ? bx : bx + bw
                const tip = arrowFirst ? 0 : width
                ctx.moveTo(edge, cy - t)
                ctx.lineTo(tip, cy)
                ctx.lineTo(edge, cy + t)
            } else {
                const cx = root.arrowOffset >= 0 ? root.arrowOffset : bx + bw / 2
                const edge = arrowFirst ? by : by + bh
                const tip = arrowFirst ? 0 : height
                ctx.moveTo(cx - t, edge)
                ctx.lineTo(cx, tip)
                ctx.lineTo(cx + t, edge)
            }
            ctx.closePath()
            ctx.fill()
        }
    }

    TextLabel {
        id: label
        objectName: "text"
        x: root.horizontalPadding
           + (root.transposed && root.arrowDirection === TaskbarTooltip.ArrowDirection.Up ? root.triangleHeight : 0)
        y: root.verticalPadding
           + (!root.transposed && root.arrowDirection === TaskbarTooltip.ArrowDirection.Up ? root.triangleHeight : 0)
        width: Math.min(label.implicitWidth, root.maxTextWidth)
        text: root.text
        font.pixelSize: 14
        color: root.textColor
    }
}
