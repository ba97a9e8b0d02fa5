import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// Outline: size and place around its component, radius with and without a component radius,
// a caller's radius, and the warning when it has no component.
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
        Item {
            width: 80; height: 20
            property alias outline: outline
            UiKitBase.Outline { id: outline }
        }
    }

    Component {
        id: siblings
        Item {
            property alias outline: outline
            Rectangle { id: target; x: 30; y: 20; width: 60; height: 40; radius: 6 }
            UiKitBase.Outline { id: outline; outlinedComponent: target }
        }
    }

    Component {
        id: orphan
        UiKitBase.Outline { outlinedComponent: null }
    }

    TestCase {
        name: "Outline"
        when: windowShown

        function test_ringAroundARoundedParent() {
            const owner = createTemporaryObject(roundedParent, scene)
            const ring = owner.outline
            compare(ring.outlinedComponent, owner)
            compare(ring.x, -4)
            compare(ring.y, -4)
            compare(ring.width, 108)
            compare(ring.height, 38)
            compare(ring.radius, 14)
            compare(ring.border.width, 2)
            verify(Qt.colorEqual(ring.color, "transparent"))
            verify(Qt.colorEqual(ring.border.color, "#B2FFFFFF"), "dark contentSubPrimary")
            owner.radius = 20
            compare(ring.radius, 24)
        }

        function test_squareCornersWithoutAComponentRadius() {
            const owner = createTemporaryObject(plainParent, scene)
            compare(owner.outline.radius, 0)
            compare(owner.outline.width, 88)
            compare(owner.outline.height, 28)
        }

        function test_callerMaySetTheRadius() {
            const owner = createTemporaryObject(plainParent, scene)
            owner.outline.outlineRadius = 6
            compare(owner.outline.radius, 6)
        }

        function test_followsASiblingComponent() {
            const owner = createTemporaryObject(siblings, scene)
            compare(owner.outline.x, 26)
            compare(owner.outline.y, 16)
            compare(owner.outline.width, 68)
            compare(owner.outline.height, 48)
            compare(owner.outline.radius, 10)
        }

        function test_warnsWithoutAComponent() {
            ignoreWarning(new RegExp("'outlinedComponent ' property is not set$"))
            const ring = createTemporaryObject(orphan, null)
            verify(ring !== null)
            compare(ring.radius, 0)
        }
    }
}
