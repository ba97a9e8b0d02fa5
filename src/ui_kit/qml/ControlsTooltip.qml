// A tooltip for controls: a dark bubble of radius 12 with a 6 px triangle under it pointing at
// the control, fading over 400 ms between the states "Visible" and "Invisible".
import QtQuick
import QtQuick.Controls

ToolTip {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    readonly property int triangleHeight: 6

    padding: 12
    bottomPadding: 12 + root.triangleHeight
    y: -root.implicitHeight
    x: parent ? (parent.width - root.implicitWidth) / 2 : 0

    // The fade is done by the states below, not by the popup's own transitions.
    enter: null
    exit: null

    contentItem: TextLabel {
        objectName: "text"
        text: root.text
        font.pixelSize: 14
        color: root.pal ? root.pal.contentPrimary : "white"
    }

    background: Item {
        id: background
        state: root.visible ? "Visible" : "Invisible"
        states: [
            State { name: "Visible"; PropertyChanges { target: background; opacity: 1.0 } },
            State { name: "Invisible"; PropertyChanges { target: background; opacity: 0.0 } }
        ]
        transitions: Transition {
            NumberAnimation { property: "opacity"; duration: 400 }
        }

        Rectangle {
            objectName: "bubble"
            width: parent.width
            height: parent.height - root.triangleHeight
            radius: 12
            color: "#050505"
        }

        Canvas {
            id: triangle
            width: root.triangleHeight * 2
            height: root.triangleHeight
            x: (parent.width - width) / 2
            y: parent.height - root.triangleHeight

            onPaint: {
                const ctx = getContext("2d")
                ctx.reset()
                ctx.fillStyle = "#050505"
                ctx.beginPath()
                ctx.moveTo(0, 0)
                ctx.lineTo(width, 0)
                ctx.lineTo(width / 2, height)
                ctx.closePath()
                ctx.fill()
            }
        }
    }
}
