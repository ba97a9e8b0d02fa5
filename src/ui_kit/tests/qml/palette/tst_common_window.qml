import QtQuick
import QtTest
import "qrc:/ui_kit/qml/base/" as UiKitBase

// CommonWindow: geometry, the menu shown only with a source, the page loaded while visible,
// Escape to close and Alt+PageUp/PageDown handed to the menu.
Item {
    id: scene
    width: 1100
    height: 700

    Component {
        id: windowComponent
        UiKitBase.CommonWindow {}
    }

    Component {
        id: spyComponent
        SignalSpy { signalName: "closeActivated" }
    }

    TestCase {
        name: "CommonWindow"
        when: windowShown

        function test_geometryAndColours() {
            const frame = createTemporaryObject(windowComponent, scene)
            compare(frame.width, 1018)
            compare(frame.height, 580)
            const background = findChild(frame, "background")
            compare(background.radius, 16)
            verify(Qt.colorEqual(background.color, "#D6212529"))
            const menu = findChild(frame, "menuBackground")
            compare(menu.width, 318)
            verify(Qt.colorEqual(menu.color, "#050505"))
            verify(!menu.drawTopRightCorner && !menu.drawBottomRightCorner)
            verify(menu.drawTopLeftCorner && menu.drawBottomLeftCorner)
            const page = findChild(frame, "page")
            compare(page.x, 318)
            compare(page.width, 700)
            compare(page.height, 580)
            compare(frame.closeButton.x, 1018 - 8 - 40)
            compare(frame.closeButton.y, 8)
        }

        function test_menuOnlyWithASource() {
            const frame = createTemporaryObject(windowComponent, scene)
            verify(!findChild(frame, "menuBackground").visible)
            frame.menuSource = Qt.resolvedUrl("data/TestMenu.qml")
            verify(findChild(frame, "menuBackground").visible)
            tryVerify(() => frame.menuItem !== null)
        }

        function test_pageLoadsWhileVisible() {
            const frame = createTemporaryObject(windowComponent, scene, {
                pageSource: Qt.resolvedUrl("data/TestPage.qml") })
            tryVerify(() => frame.pageItem !== null)
            compare(frame.pageItem.objectName, "testPage")
            frame.isVisible = false
            tryVerify(() => frame.pageItem === null)
            frame.isVisible = true
            tryVerify(() => frame.pageItem !== null)
        }

        function test_escapeActivatesClose() {
            const frame = createTemporaryObject(windowComponent, scene)
            const spy = createTemporaryObject(spyComponent, scene, { target: frame })
            frame.forceActiveFocus()
            keyClick(Qt.Key_Escape)
            compare(spy.count, 1)
            mouseClick(frame.closeButton, 20, 20)
            compare(spy.count, 2)
        }

        function test_altPageKeysGoToTheMenu() {
            const frame = createTemporaryObject(windowComponent, scene, {
                menuSource: Qt.resolvedUrl("data/TestMenu.qml") })
            tryVerify(() => frame.menuItem !== null)
            frame.forceActiveFocus()
            keyClick(Qt.Key_PageDown, Qt.AltModifier)
            keyClick(Qt.Key_PageDown, Qt.AltModifier)
            keyClick(Qt.Key_PageUp, Qt.AltModifier)
            keyClick(Qt.Key_PageUp)
            compare(frame.menuItem.nextCount, 2)
            compare(frame.menuItem.previousCount, 1)
        }
    }
}
