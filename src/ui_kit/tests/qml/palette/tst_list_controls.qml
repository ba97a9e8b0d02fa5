import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The controls that choose from a list: what they emit, and how large they grow.
Item {
    id: scene
    width: 1100
    height: 900

    Component { id: windowsComponent; UiKitBase.AppWindows {} }
    Component { id: comboComponent; UiKitBase.ComboBox { model: ["English", "Español", "Русский"] } }
    Component { id: altTabComponent; UiKitBase.AltTab { model: [{ title: "A" }, { title: "B" }, { title: "C" }] } }
    Component {
        id: menuComponent
        UiKitBase.CommonMenu {
            model: ListModel {
                ListElement { name: "Network"; componentUrlFromModel: "qrc:/pages/network.qml" }
                ListElement { name: "Display"; componentUrlFromModel: "qrc:/pages/display.qml" }
            }
        }
    }
    Component { id: spyComponent; SignalSpy {} }

    TestCase {
        name: "ListControls"
        when: windowShown

        function test_appWindowsHeight_data() {
            return [ { tag: "one", count: 1, height: 60 }, { tag: "three", count: 3, height: 172 },
                     { tag: "thirteen", count: 13, height: 732 }, { tag: "twenty", count: 20, height: 732 } ]
        }

        function test_appWindowsHeight(data) {
            const titles = []
            for (let i = 0; i < data.count; ++i)
                titles.push("Window " + i)
            const list = createTemporaryObject(windowsComponent, scene, { model: titles })
            compare(list.width, 300)
            compare(list.height, data.height)
        }

        function test_appWindowsSelect() {
            const list = createTemporaryObject(windowsComponent, scene, { model: ["a", "b", "c"] })
            const spy = createTemporaryObject(spyComponent, scene, { target: list, signalName: "selectAppWindow" })
            waitForRendering(list)
            mouseClick(list, 150, 4 + 52 + 4 + 26)
            compare(spy.count, 1)
            compare(spy.signalArguments[0][0], 1)
        }

        function test_commonMenuActivation() {
            const menu = createTemporaryObject(menuComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: menu, signalName: "itemActivated" })
            tryCompare(menu, "count", 2)
            menu.selectNext()
            compare(menu.currentIndex, 1)
            compare(spy.signalArguments[0][0].toString(), "qrc:/pages/display.qml")
            compare(spy.signalArguments[0][1], 1)
            menu.selectNext()
            compare(menu.currentIndex, 1, "stays on the last row")
            menu.selectPrevious()
            compare(spy.signalArguments[2][1], 0)
            mouseClick(menu, 100, 16 + 52 + 4 + 26)
            compare(spy.signalArguments[3][1], 1)
        }

        function test_comboBoxSelectsAndFilters() {
            const combo = createTemporaryObject(comboComponent, scene, { searchEnabled: true })
            const spy = createTemporaryObject(spyComponent, scene, { target: combo, signalName: "activated" })
            compare(combo.currentText, "")
            mouseClick(combo)
            tryVerify(() => combo.popup.opened)
            const list = findChild(combo.popup.contentItem, "list")
            compare(list.count, 3)
            keyClick(Qt.Key_S)
            keyClick(Qt.Key_P)
            compare(list.count, 1, "only Español contains 'sp'")
            keyClick(Qt.Key_Down)
            keyClick(Qt.Key_Return)
            compare(spy.count, 1)
            compare(spy.signalArguments[0][0], 1, "the index in the full model")
            compare(combo.currentIndex, 1)
            compare(combo.currentText, "Español")
            tryVerify(() => !combo.popup.visible)
        }

        function test_altTabKeys() {
            const altTab = createTemporaryObject(altTabComponent, scene)
            const select = createTemporaryObject(spyComponent, scene, { target: altTab, signalName: "selectApp" })
            const hide = createTemporaryObject(spyComponent, scene, { target: altTab, signalName: "hideAltTab" })
            compare(altTab.width, 3 * 340 + 2 * 15 + 2 * 15)
            compare(altTab.height, 245 + 2 * 15)
            altTab.forceActiveFocus()
            keyClick(Qt.Key_Left)
            compare(altTab.currentIndex, 2, "wraps to the end")
            keyClick(Qt.Key_Tab)
            keyClick(Qt.Key_Tab)
            compare(altTab.currentIndex, 1)
            keyClick(Qt.Key_Return)
            compare(select.count, 1)
            compare(select.signalArguments[0][0], 1)
            compare(hide.count, 1)
            keyClick(Qt.Key_Escape)
            compare(select.count, 1)
            compare(hide.count, 2)
        }
    }
}
