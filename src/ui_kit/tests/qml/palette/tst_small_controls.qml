import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// TextLabel, Toast and AppButton: their fixed look and their behaviour.
Item {
    id: scene
    width: 900
    height: 300

    Component { id: labelComponent; UiKitBase.TextLabel { text: "Label" } }
    Component { id: toastComponent; UiKitBase.Toast { message: "Saved" } }
    Component { id: appButtonComponent; UiKitBase.AppButton {} }
    Component { id: spyComponent; SignalSpy {} }

    TestCase {
        name: "SmallControls"
        when: windowShown

        function test_textLabel() {
            const label = createTemporaryObject(labelComponent, scene)
            verify(Qt.colorEqual(label.color, "#FFFFFF"))
            compare(label.font.family, "Halcyra Sans Text")
            compare(label.font.pixelSize, 16)
            compare(label.wrapMode, Text.WordWrap)
            paletteSwitch.SetPaletteIdForTesting(1)
            verify(Qt.colorEqual(label.color, "#212529"), "light: " + label.color)
            paletteSwitch.SetPaletteIdForTesting(2)
            verify(Qt.colorEqual(label.color, "#FFFFFF"))
        }

        function test_toastOneLine() {
            const toast = createTemporaryObject(toastComponent, scene)
            const bubble = findChild(toast, "bubble")
            const text = findChild(toast, "message")
            compare(bubble.radius, 12)
            verify(Qt.colorEqual(bubble.color, "#242424"))
            compare(text.font.pixelSize, 14)
            compare(text.elide, Text.ElideRight)
            compare(text.lineCount, 1)
            compare(bubble.height, text.height + 28)
            compare(bubble.width, text.width + 32)
            verify(!findChild(toast, "errorIcon").visible)
        }

        function test_toastSeveralLinesHasSmallerPadding() {
            const toast = createTemporaryObject(toastComponent, scene, {
                maxLinesCount: 3, maxTextWidth: 120,
                message: "A rather long notice that cannot fit on one line of the bubble" })
            const text = findChild(toast, "message")
            tryVerify(() => text.lineCount > 1)
            compare(text.width, 120)
            compare(findChild(toast, "bubble").height, text.height + 16)
        }

        function test_toastWidthIsCappedAndElided() {
            const toast = createTemporaryObject(toastComponent, scene, {
                maxTextWidth: 100, message: "A rather long notice that cannot fit" })
            const text = findChild(toast, "message")
            compare(text.width, 100)
            compare(text.lineCount, 1)
            verify(text.truncated)
        }

        function test_toastErrorIcon() {
            const toast = createTemporaryObject(toastComponent, scene, { isError: true })
            const icon = findChild(toast, "errorIcon")
            verify(icon.visible)
            compare(icon.status, Image.Ready)
            compare(findChild(toast, "message").x, icon.width + 10)
        }

        function test_appButtonIndicator_data() {
            return [ { tag: "none", count: 0, dashes: 0 }, { tag: "one", count: 1, dashes: 1 },
                     { tag: "two", count: 2, dashes: 2 }, { tag: "many", count: 7, dashes: 2 } ]
        }

        function test_appButtonIndicator(data) {
            const button = createTemporaryObject(appButtonComponent, scene, { count: data.count })
            compare(button.width, 40)
            compare(button.height, 48)
            const indicator = findChild(button, "indicator")
            let dashes = 0
            const row = indicator.children[0]
            for (let i = 0; i < row.children.length; ++i) {
                const child = row.children[i]
                if (child.width === 8 && child.height === 2) {
                    verify(Qt.colorEqual(child.color, "#80FFFFFF"))
                    dashes += 1
                }
            }
            compare(dashes, data.dashes)
        }

        function test_appButtonKeys() {
            const button = createTemporaryObject(appButtonComponent, scene)
            const clicks = createTemporaryObject(spyComponent, scene, { target: button, signalName: "clicked" })
            button.forceActiveFocus()
            verify(Qt.colorEqual(findChild(button, "frame").border.color, "white"))
            keyClick(Qt.Key_Return)
            compare(clicks.count, 1)
            compare(clicks.signalArguments[0][0].button, Qt.LeftButton)
            keyClick(Qt.Key_Tab)
            verify(!button.focus)
            verify(Qt.colorEqual(findChild(button, "frame").border.color, "transparent"))
        }

        function test_appButtonLosesFocusWhenHidden() {
            const button = createTemporaryObject(appButtonComponent, scene)
            button.forceActiveFocus()
            verify(button.focus)
            button.visible = false
            verify(!button.focus)
        }

        function test_appButtonMouse() {
            const button = createTemporaryObject(appButtonComponent, scene)
            const entered = createTemporaryObject(spyComponent, scene, { target: button, signalName: "entered" })
            const clicks = createTemporaryObject(spyComponent, scene, { target: button, signalName: "clicked" })
            mouseMove(button, 20, 20)
            tryCompare(entered, "count", 1)
            mouseClick(button, 20, 20, Qt.RightButton)
            compare(clicks.count, 1)
            compare(clicks.signalArguments[0][0].button, Qt.RightButton)
        }
    }
}
