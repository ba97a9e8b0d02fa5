import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The keyboard handling of the window frame, the combo box and the task bar button, and a label's
// palette rebinding.
Item {
    id: scene
    width: 1100
    height: 900

    Component { id: windowComponent; UiKitBase.CommonWindow { menuSource: Qt.resolvedUrl("data/TestMenu.qml") } }
    Component { id: comboComponent; UiKitBase.ComboBox { model: ["English", "Español", "Русский"] } }
    Component { id: labelComponent; UiKitBase.TextLabel { text: "Label" } }
    Component { id: appButtonComponent; UiKitBase.AppButton { count: 2 } }
    Component { id: spyComponent; SignalSpy {} }

    TestCase {
        name: "OtherControls"
        when: windowShown

        function test_commonWindowClosesByEscapeAndHandsAltPageKeysToTheMenu() {
            const frame = createTemporaryObject(windowComponent, scene)
            const closes = createTemporaryObject(spyComponent, scene, { target: frame, signalName: "closeActivated" })
            tryVerify(() => frame.menuItem !== null)
            frame.forceActiveFocus()
            keyClick(Qt.Key_PageDown, Qt.AltModifier)
            keyClick(Qt.Key_PageUp, Qt.AltModifier)
            keyClick(Qt.Key_PageUp)
            compare([frame.menuItem.nextCount, frame.menuItem.previousCount], [1, 1])
            keyClick(Qt.Key_Escape)
            mouseClick(frame.closeButton, 20, 20)
            compare(closes.count, 2)
        }

        function test_comboBoxFiltersAndReportsTheIndexInTheFullModel() {
            const combo = createTemporaryObject(comboComponent, scene, { searchEnabled: true })
            const spy = createTemporaryObject(spyComponent, scene, { target: combo, signalName: "activated" })
            mouseClick(combo)
            tryVerify(() => combo.popup.opened)
            keyClick(Qt.Key_S)
            keyClick(Qt.Key_P)
            compare(findChild(combo.popup.contentItem, "list").count, 1, "only Español contains 'sp'")
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            compare(spy.signalArguments[0][0], 1)
            compare(combo.currentText, "Español")
        }

        function test_appButtonReturnPassesTheLeftButtonValueToClicked() {
            const button = createTemporaryObject(appButtonComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: button, signalName: "clicked" })
            button.forceActiveFocus()
            keyClick(Qt.Key_Return)
            compare(spy.count, 1)
            compare(spy.signalArguments[0][0], Qt.LeftButton)
        }

        function test_textLabelFollowsThePalette() {
            const label = createTemporaryObject(labelComponent, scene)
            verify(Qt.colorEqual(label.color, "#FFFFFF"))
            paletteSwitch.SetPaletteIdForTesting(1)
            verify(Qt.colorEqual(label.color, "#212529"), "light: " + label.color)
            paletteSwitch.SetPaletteIdForTesting(2)
        }
    }
}
