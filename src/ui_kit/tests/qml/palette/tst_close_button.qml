import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// CloseButton: what activates it, and its background by hover and focus.
Item {
    id: scene
    width: 400
    height: 300

    Component { id: closeComponent; UiKitBase.CloseButton { x: 20; y: 20 } }
    Component { id: spyComponent; SignalSpy { signalName: "activated" } }

    TestCase {
        name: "CloseButton"
        when: windowShown

        function test_activation_data() {
            return [ { tag: "Enter", key: Qt.Key_Enter, count: 1 }, { tag: "Return", key: Qt.Key_Return, count: 1 },
                     { tag: "Escape", key: Qt.Key_Escape, count: 0 }, { tag: "Click", key: 0, count: 1 } ]
        }

        function test_activation(data) {
            const close = createTemporaryObject(closeComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: close })
            mouseClick(close, 20, 20, Qt.RightButton)
            verify(close.button.activeFocus, "a right click gives focus")
            compare(spy.count, 0, "but does not activate")
            if (data.key === 0)
                mouseClick(close, 20, 20)
            else
                keyClick(data.key)
            compare(spy.count, data.count)
        }

        function test_backgroundByHoverAndFocus() {
            const close = createTemporaryObject(closeComponent, scene)
            const background = findChild(close, "background")
            verify(Qt.colorEqual(background.color, "#1FFFFFFF"), "rest " + background.color)
            mouseMove(close, 20, 20)
            tryVerify(() => Qt.colorEqual(background.color, "#29FFFFFF"))
            mouseMove(scene, 399, 299)
            tryVerify(() => Qt.colorEqual(background.color, "#1FFFFFFF"))
            close.button.forceActiveFocus()
            verify(Qt.colorEqual(background.color, "#29FFFFFF"), "focused " + background.color)
        }
    }
}
