// Focus ring: a transparent rectangle 4 px outside the outlined component on every side.
// The outlined component is the parent unless set; it must be the parent or a sibling.
// The ring follows the component's own rounding (its radius + 4) when it has a `radius`.
import QtQuick

Rectangle {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property Item outlinedComponent: parent
    property real outlineRadius: root.outlinedComponent && ("radius" in root.outlinedComponent)
                                 ? root.outlinedComponent.radius + 4 : 0

    readonly property bool outlinesParent: root.outlinedComponent === root.parent

    x: !root.outlinedComponent ? 0 : (root.outlinesParent ? -4 : root.outlinedComponent.x - 4)
    y: !root.outlinedComponent ? 0 : (root.outlinesParent ? -4 : root.outlinedComponent.y - 4)
    width: root.outlinedComponent ? root.outlinedComponent.width + 8 : 0
    height: root.outlinedComponent ? root.outlinedComponent.height + 8 : 0
    radius: root.outlineRadius
    color: "transparent"
    border.width: 2
    border.color: root.pal ? root.pal.contentSubPrimary : "white"

    Component.onCompleted: {
        if (!root.outlinedComponent)
            console.warn("'outlinedComponent ' property is not set")
    }
}
