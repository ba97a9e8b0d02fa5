import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// With "paletteProvider" null every control shows its literal fallback colours.
Item {
    id: scene
    width: 1100
    height: 700

    Component { id: buttonComponent; UiKitBase.PushButton { text: "Decline" } }
    Component { id: labelComponent; UiKitBase.TextLabel { text: "Label" } }
    Component { id: promptComponent; UiKitBase.TextPromt { text: "Prompt" } }
    Component { id: closeComponent; UiKitBase.CloseButton {} }
    Component { id: toastComponent; UiKitBase.Toast { message: "Saved" } }
    Component { id: windowComponent; UiKitBase.CommonWindow {} }
    Component {
        id: outlinedComponent
        Rectangle { width: 50; height: 20; radius: 4; property alias outline: outline; UiKitBase.Outline { id: outline } }
    }

    TestCase {
        name: "FallbackColours"
        when: windowShown

        function colorIs(actual, expected, what) {
            verify(Qt.colorEqual(actual, expected), what + ": got " + actual + ", expected " + expected)
        }

        function test_pushButtonStates_data() {
            return [
                { tag: "Normal", normal: "#9C9CFF", hover: "#8C8CFF", pressed: "#9C9CFF", content: "white" },
                { tag: "Light", normal: "#9C9CFF", hover: "#8C8CFF", pressed: "#9C9CFF", content: "#9C9CFF" },
                { tag: "Transparent", normal: "transparent", hover: "#1FFFFFFF", pressed: "#29FFFFFF", content: "white" },
                { tag: "SystemWarning", normal: "#29F3BD3D", hover: "#8C8CFF", pressed: "#9C9CFF", content: "#F3BD3D" },
            ]
        }

        function test_pushButtonStates(data) {
            const button = createTemporaryObject(buttonComponent, scene, { state: data.tag, hintText: "hint" })
            compare(button.pal, null)
            colorIs(button.normalColor, data.normal, "normalColor")
            colorIs(button.hoverColor, data.hover, "hoverColor")
            colorIs(button.pressedColor, data.pressed, "pressedColor")
            colorIs(findChild(button, "caption").color, data.content, "caption")
            tryVerify(() => findChild(button, "hintLoader").item !== null)
            colorIs(findChild(button, "hintLoader").item.color, "#AFB5BC", "hint")
            button.enabled = false
            colorIs(findChild(button, "background").color, "black", "disabled background")
            colorIs(findChild(button, "caption").color, "gray", "disabled caption")
        }

        function test_otherControls() {
            colorIs(createTemporaryObject(labelComponent, scene).color, "white", "TextLabel")
            colorIs(createTemporaryObject(promptComponent, scene).color, "#85FFFFFF", "TextPromt")
            colorIs(createTemporaryObject(outlinedComponent, scene).outline.border.color, "white", "Outline")
            colorIs(findChild(createTemporaryObject(toastComponent, scene), "bubble").color, "#171F1D", "Toast")
            const frame = createTemporaryObject(windowComponent, scene)
            colorIs(findChild(frame, "background").color, "#D6212529", "CommonWindow")
            colorIs(findChild(frame, "menuBackground").color, "black", "CommonWindow menu")
            const close = createTemporaryObject(closeComponent, scene)
            colorIs(findChild(close, "background").color, "#14FFFFFF", "CloseButton at rest")
            close.button.forceActiveFocus()
            colorIs(findChild(close, "background").color, "#29FFFFFF", "CloseButton focused")
        }
    }
}
