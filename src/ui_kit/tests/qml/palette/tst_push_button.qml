import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// PushButton under the dark palette (and the light one where said): colours by state and by
// interaction, the disabled look, the hint line, keyboard clicks and focus.
Item {
    id: scene
    width: 400
    height: 300

    Component {
        id: buttonComponent
        UiKitBase.PushButton {
            text: "Approve"
        }
    }

    TestCase {
        name: "PushButton"
        when: windowShown

        function colorIs(actual, expected, what) {
            verify(Qt.colorEqual(actual, expected), what + ": got " + actual + ", expected " + expected)
        }

        function find(button, objectName) {
            return findChild(button, objectName)
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

        function test_stateColours(data) {
            const button = createTemporaryObject(buttonComponent, scene, { state: data.tag })
            colorIs(button.normalColor, data.normal, "normalColor")
            colorIs(button.hoverColor, data.hover, "hoverColor")
            colorIs(button.pressedColor, data.pressed, "pressedColor")
            colorIs(button.contentColor, data.content, "contentColor")
            colorIs(button.disabledColor, "#1FFFFFFF", "disabledColor")
            colorIs(find(button, "caption").color, data.content, "caption")
        }

        function test_defaults() {
            const button = createTemporaryObject(buttonComponent, scene)
            compare(button.width, 190)
            compare(button.height, 52)
            compare(button.state, "Normal")
            compare(button.radius, 16)
            compare(button.hintText, "")
            compare(button.fontPixelSize, 16)
            verify(button.hoverEnabled)
            verify(button.textLength > 0)
            compare(find(button, "caption").font.family, "Halcyra Sans Text")
            compare(find(button, "caption").font.weight, Font.DemiBold)
        }

        function test_backgroundFollowsInteraction() {
            const button = createTemporaryObject(buttonComponent, scene, { state: "Alternative" })
            const background = find(button, "background")
            colorIs(background.color, button.normalColor, "at rest")

            mouseMove(button, button.width / 2, button.height / 2)
            tryVerify(() => button.hovered)
            colorIs(background.color, button.hoverColor, "hovered")

            mousePress(button, button.width / 2, button.height / 2)
            colorIs(background.color, button.pressedColor, "pressed")
            mouseRelease(button, button.width / 2, button.height / 2)
            colorIs(background.color, button.hoverColor, "released")

            mouseMove(scene, scene.width - 1, scene.height - 1)
            tryVerify(() => !button.hovered)
            colorIs(background.color, button.normalColor, "left")
        }

        function test_disabledWhileHoveredShowsDisabledColours() {
            const button = createTemporaryObject(buttonComponent, scene, { state: "Normal" })
            mouseMove(button, button.width / 2, button.height / 2)
            tryVerify(() => button.hovered)
            button.enabled = false
            colorIs(find(button, "background").color, "#1FFFFFFF", "background")
            colorIs(find(button, "caption").color, "#57FFFFFF", "caption")
        }

        function test_disabledWinsOverPressed() {
            const button = createTemporaryObject(buttonComponent, scene, { state: "Normal" })
            mousePress(button, button.width / 2, button.height / 2)
            verify(button.pressed)
            button.enabled = false
            colorIs(find(button, "background").color, button.disabledColor, "background")
            mouseRelease(button, button.width / 2, button.height / 2)
        }

        function test_systemWarningUnderLightPaletteHasInvalidNormalColor() {
            paletteSwitch.SetPaletteIdForTesting(1)
            const button = createTemporaryObject(buttonComponent, scene, { state: "SystemWarning" })
            verify(button.pal !== null)
            verify(!button.normalColor.valid, "normalColor: " + button.normalColor)
            // The other entries of the state are set in the light palette.
            colorIs(button.hoverColor, "#D2D4D6", "hoverColor")
            colorIs(button.pressedColor, "#BCBFC2", "pressedColor")
        }

        function test_paletteChangeRecolours() {
            const button = createTemporaryObject(buttonComponent, scene, { state: "Alternative" })
            colorIs(button.normalColor, "#1FFFFFFF", "dark")
            paletteSwitch.SetPaletteIdForTesting(1)
            colorIs(button.normalColor, "#E9EAEB", "light")
            colorIs(find(button, "caption").color, "#212529", "light caption")
        }

        function test_emptyHintCreatesNoHintItem() {
            const button = createTemporaryObject(buttonComponent, scene, { hintText: "" })
            wait(50)
            const loader = find(button, "hintLoader")
            verify(!loader.active)
            compare(loader.item, null)
            compare(find(button, "hint"), null)
        }

        function test_hintLoadsWhenSet() {
            const button = createTemporaryObject(buttonComponent, scene)
            const loader = find(button, "hintLoader")
            verify(loader.asynchronous)
            button.hintText = "Ctrl+A"
            tryVerify(() => loader.item !== null)
            compare(loader.item.text, "Ctrl+A")
            compare(loader.item.font.pixelSize, 12)
            colorIs(loader.item.color, "#8FFFFFFF", "hint colour")
            button.hintText = ""
            tryVerify(() => loader.item === null)
        }

        function test_enterAndReturnClick() {
            const button = createTemporaryObject(buttonComponent, scene)
            const clicks = createTemporaryObject(spyComponent, scene, { target: button, signalName: "clicked" })
            button.forceActiveFocus()
            keyClick(Qt.Key_Return)
            compare(clicks.count, 1)
            keyClick(Qt.Key_Enter)
            compare(clicks.count, 2)
            keyClick(Qt.Key_A)
            compare(clicks.count, 2)
        }

        function test_leftClickPassesThroughRightClickFocuses() {
            const button = createTemporaryObject(buttonComponent, scene)
            const clicks = createTemporaryObject(spyComponent, scene, { target: button, signalName: "clicked" })
            verify(!button.activeFocus)
            mouseClick(button, 10, 10, Qt.RightButton)
            verify(button.activeFocus)
            compare(clicks.count, 0)
            mouseClick(button, 10, 10, Qt.LeftButton)
            compare(clicks.count, 1)
        }

        function test_outlineOnVisualFocusOnly() {
            const button = createTemporaryObject(buttonComponent, scene, { radius: 12 })
            const background = find(button, "background")
            let ring = null
            for (let i = 0; i < background.children.length; ++i) {
                if (background.children[i].outlineRadius !== undefined)
                    ring = background.children[i]
            }
            verify(ring !== null)
            button.forceActiveFocus(Qt.MouseFocusReason)
            verify(button.activeFocus)
            verify(!ring.visible)
            scene.forceActiveFocus()
            button.forceActiveFocus(Qt.TabFocusReason)
            verify(button.visualFocus)
            verify(ring.visible)
            compare(ring.radius, 16)
            compare(ring.width, button.width + 8)
        }

        Component {
            id: spyComponent
            SignalSpy {}
        }
    }
}
