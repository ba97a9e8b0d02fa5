import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// Outline: a ring 4 px outside its component, with the component's radius plus 4, or square corners.
Item {
    id: scene
    width: 400
    height: 300

    Component {
        id: roundedParent
        Rectangle {
            x: 50; y: 40; width: 100; height: 30; radius: 10
            property alias outline: outline
            UiKitBase.Outline { id: outline }
        }
    }

    Component {
        id: plainParent
        Item { width: 80; height: 20; property alias outline: outline; UiKitBase.Outline { id: outline } }
    }

    TestCase {
        name: "Outline"
        when: windowShown

        function test_ringAroundARoundedParent() {
            const owner = createTemporaryObject(roundedParent, scene)
            const ring = owner.outline
            compare([ring.x, ring.y, ring.width, ring.height], [-4, -4, 108, 38])
            compare(ring.radius, 14)
            verify(Qt.colorEqual(ring.border.color, "#B2FFFFFF"), "dark contentSubPrimary")
            owner.radius = 20
            compare(ring.radius, 24)
        }

        function test_squareCornersWithoutAComponentRadius() {
            const owner = createTemporaryObject(plainParent, scene)
            compare([owner.outline.width, owner.outline.height, owner.outline.radius], [88, 28, 0])
            owner.outline.outlineRadius = 6
            compare(owner.outline.radius, 6)
        }
    }
}
