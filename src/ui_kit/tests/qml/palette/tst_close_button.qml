import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// CloseButton: what activates it, and its background by hover and focus.
Item {
    id: scene
    width: 400
    height: 300

    Component {
        id: closeComponent
        UiKitBase.CloseButton { x: 20; y: 20 }
    }

    Component {
        id: spyComponent
        SignalSpy { signalName: "activated" }
    }

    TestCase {
        name: "CloseButton"
        when: windowShown

        function test_defaults() {
            const close = createTemporaryObject(closeComponent, scene)
            compare(close.width, 40)
            compare(close.height, 40)
            compare(close.iconSize, 16)
            compare(close.radius, 12)
            compare(close.iconSource.toString(), "qrc:/ui_kit/images/close_icon")
            verify(Qt.colorEqual(close.iconColor, "white"))
        }

        function test_activation_data() {
            return [ { tag: "Enter", key: Qt.Key_Enter }, { tag: "Return", key: Qt.Key_Return },
                     { tag: "Space", key: Qt.Key_Space } ]
        }

        function test_activation(data) {
            const close = createTemporaryObject(closeComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: close })
            close.button.forceActiveFocus()
            keyClick(data.key)
            compare(spy.count, 1)
        }

        function test_clickActivatesOnce() {
            const close = createTemporaryObject(closeComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: close })
            mouseClick(close, 20, 20)
            compare(spy.count, 1)
            mouseClick(close, 20, 20)
            compare(spy.count, 2)
        }

        function test_otherKeysAndRightClickDoNotActivate() {
            const close = createTemporaryObject(closeComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: close })
            close.button.forceActiveFocus()
            keyClick(Qt.Key_Escape)
            keyClick(Qt.Key_A)
            mouseClick(close, 20, 20, Qt.RightButton)
            compare(spy.count, 0)
        }

        function test_rightClickGivesFocus() {
            const close = createTemporaryObject(closeComponent, scene)
            verify(!close.button.activeFocus)
            mouseClick(close, 20, 20, Qt.RightButton)
            verify(close.button.activeFocus)
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
