import QtQuick
import QtTest

TestCase {
    id: testCase
    name: "PaletteFromQml"

    // Bound the way the kit's controls bind: through `pal`, with literal fallbacks.
    Item {
        id: control
        property var pal: paletteProvider ? paletteProvider.palette : null
        property color normalColor: pal ? pal.systemWarningBackground : "#29F3BD3D"
        property color contentColor: pal ? pal.systemWarningPrimary : "#F3BD3D"
        property color border: pal ? pal.contentBorder : "#29FFFFFF"
        property color gradientStart: pal ? pal.greenPrimary.startColor : "black"
    }

    SignalSpy {
        id: changes
        target: paletteProvider
        signalName: "PaletteChanged"
    }

    function init() {
        paletteSwitch.setPaletteId(2)
        changes.clear()
    }

    function test_darkPaletteIsCurrentAtStart() {
        compare(paletteSwitch.paletteId(), 2)
        verify(Qt.colorEqual(paletteProvider.palette.systemWarningPrimary, "#F3BD3D"))
        verify(Qt.colorEqual(paletteProvider.palette.backgroundPrimary, "#050505"))
        verify(Qt.colorEqual(control.normalColor, "#29F3BD3D"))
    }

    function test_sameIdEmitsNoChange() {
        paletteSwitch.setPaletteId(2)
        compare(changes.count, 0)
    }

    function test_switchToLightEmitsOnceAndRebindsControls() {
        paletteSwitch.setPaletteId(1)
        compare(changes.count, 1)
        verify(Qt.colorEqual(control.border, "#D2D4D6"))
        verify(Qt.colorEqual(paletteProvider.palette.backgroundPrimary, "#FFFFFF"))
        // The light palette leaves the warning colours unset: invalid, not the literal fallback.
        compare(control.contentColor.valid, false)
        compare(control.normalColor.valid, false)
        verify(Qt.colorEqual(control.gradientStart, "#6AD62B"))
    }

    function test_unknownIdKeepsThePaletteAndEmitsNothing() {
        const before = paletteProvider.palette
        paletteSwitch.setPaletteId(3)
        compare(changes.count, 0)
        compare(paletteSwitch.paletteId(), 3)
        verify(paletteProvider.palette === before)
        paletteSwitch.setPaletteId(2)
        compare(changes.count, 0)
        verify(Qt.colorEqual(control.normalColor, "#29F3BD3D"))
    }

    function test_alphaComesFirstAndUnsetColoursAreInvalid() {
        const pal = paletteProvider.palette
        verify(Qt.colorEqual(pal.contentSubPrimary, "#B2FFFFFF"))
        verify(Qt.colorEqual(pal.purpleDisabled, "#478C8CFF"))
        verify(Qt.colorEqual(pal.backgroundBase, "#D6212529"))
        compare(pal.contentSubPrimary.valid, true)
        compare(pal.persistentAccentPrimary.valid, false)
        compare(pal.blueBackground.valid, false)
    }

    function test_paletteIdIsNotAProperty() {
        compare(typeof paletteProvider.palette.id, "undefined")
        compare(typeof paletteProvider.palette.contentPrimary, "object")
    }

    function test_gradientsReadTheirStops() {
        const gradient = paletteProvider.palette.greenSubPrimary
        verify(Qt.colorEqual(gradient.startColor, "#296AD62B"))
        verify(Qt.colorEqual(gradient.stopColor, "#291CA88C"))
        compare(gradient.startPoint, 0.0)
        compare(gradient.stopPoint, 1.0)
    }

    function test_propertiesCannotBeWritten() {
        let failed = false
        try {
            paletteProvider.palette.contentPrimary = "red"
        } catch (e) {
            failed = true
        }
        verify(failed)
        verify(Qt.colorEqual(paletteProvider.palette.contentPrimary, "#FFFFFF"))
    }
}
