import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// PushButton under the dark palette (and the light one where said).
Item {
    id: scene
    width: 400
    height: 300

    Component { id: buttonComponent; UiKitBase.PushButton { text: "Approve" } }
    Component { id: spyComponent; SignalSpy { signalName: "clicked" } }

    TestCase {
        name: "PushButton"
        when: windowShown

        function colorIs(actual, expected, what) {
            verify(Qt.colorEqual(actual, expected), what + ": got " + actual + ", expected " + expected)
        }

        function cleanup() {
            paletteSwitch.SetPaletteIdForTesting(2)
        }

        function test_stateColours_data() {
            return [
                { tag: "Normal", normal: "#8C8CFF", hover: "#9C9CFF", pressed: "#ABABFF", content: "#FFFFFF" },
                { tag: "Light", normal: "#1F8C8CFF", hover: "#338C8CFF", pressed: "#478C8CFF", content: "#8C8CFF" },
                { tag: "Alternative", normal: "#1FFFFFFF", hover: "#29FFFFFF", pressed: "#57FFFFFF", content: "#FFFFFF" },
                { tag: "Transparent", normal: "transparent", hover: "#1FFFFFFF", pressed: "#29FFFFFF", content: "#FFFFFF" },
                { tag: "SystemWarning", normal: "#29F3BD3D", hover: "#29FFFFFF", pressed: "#57FFFFFF", content: "#F3BD3D" },
            ]
        }

        // The background follows the interaction through the colours of the state.
        function test_stateColours(data) {
            const button = createTemporaryObject(buttonComponent, scene, { state: data.tag })
            const background = findChild(button, "background")
            colorIs(button.disabledColor, "#1FFFFFFF", "disabledColor")
            colorIs(findChild(button, "caption").color, data.content, "caption")
            colorIs(background.color, data.normal, "at rest")
            mouseMove(button, button.width / 2, button.height / 2)
            tryVerify(() => button.hovered)
            colorIs(background.color, data.hover, "hovered")
            mousePress(button, button.width / 2, button.height / 2)
            colorIs(background.color, data.pressed, "pressed")
            mouseRelease(button, button.width / 2, button.height / 2)
            colorIs(background.color, data.hover, "released")
            mouseMove(scene, scene.width - 1, scene.height - 1)
            tryVerify(() => !button.hovered)
            colorIs(background.color, data.normal, "left")
        }

        function test_disabledWhileHoveredShowsDisabledColours() {
            const button = createTemporaryObject(buttonComponent, scene)
            mouseMove(button, button.width / 2, button.height / 2)
            tryVerify(() => button.hovered)
            button.enabled = false
            colorIs(findChild(button, "background").color, "#1FFFFFFF", "background")
            colorIs(findChild(button, "caption").color, "#57FFFFFF", "caption")
        }

        function test_systemWarningUnderLightPaletteHasInvalidNormalColor() {
            paletteSwitch.SetPaletteIdForTesting(1)
            const button = createTemporaryObject(buttonComponent, scene, { state: "SystemWarning" })
            verify(button.pal !== null)
            verify(!button.normalColor.valid, "normalColor: " + button.normalColor)
            colorIs(button.hoverColor, "#D2D4D6", "hoverColor")
            colorIs(button.pressedColor, "#BCBFC2", "pressedColor")
        }

        function test_hintItemOnlyForANonEmptyHint() {
            const button = createTemporaryObject(buttonComponent, scene)
            const loader = findChild(button, "hintLoader")
            wait(50)
            compare(loader.item, null)
            compare(findChild(button, "hint"), null)
            button.hintText = "Ctrl+A"
            tryVerify(() => loader.item !== null)
            compare(loader.item.text, "Ctrl+A")
            colorIs(loader.item.color, "#8FFFFFFF", "hint colour")
            button.hintText = ""
            tryVerify(() => loader.item === null)
        }

        function test_enterAndReturnClickButOtherKeysDoNot() {
            const button = createTemporaryObject(buttonComponent, scene)
            const clicks = createTemporaryObject(spyComponent, scene, { target: button })
            button.forceActiveFocus()
            keyClick(Qt.Key_Return)
            keyClick(Qt.Key_Enter)
            keyClick(Qt.Key_A)
            compare(clicks.count, 2)
        }
    }
}
