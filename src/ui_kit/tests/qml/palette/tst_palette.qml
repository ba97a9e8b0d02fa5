import QtQuick
import QtTest

// The palette as QML reads it, and the provider's signal as QML sees it.
TestCase {
    name: "PaletteFromQml"

    // Bound the way the kit's controls bind: through `pal`, with literal fallbacks.
    Item {
        id: control
        property var pal: paletteProvider ? paletteProvider.palette : null
        property color warning: pal ? pal.systemWarningPrimary : "#F3BD3D"
        property color border: pal ? pal.contentBorder : "#29FFFFFF"
    }

    SignalSpy { id: changes; target: paletteProvider; signalName: "PaletteChanged" }

    function cleanup() {
        paletteSwitch.SetPaletteIdForTesting(2)
        changes.clear()
    }

    function test_providerSignalsOnlyForAnotherKnownPalette() {
        const dark = paletteProvider.palette
        verify(Qt.colorEqual(control.warning, "#F3BD3D"))
        paletteSwitch.SetPaletteIdForTesting(2)
        compare(changes.count, 0, "same id")
        paletteSwitch.SetPaletteIdForTesting(3)
        compare(changes.count, 0, "unknown id")
        verify(paletteProvider.palette === dark)
        paletteSwitch.SetPaletteIdForTesting(1)
        compare(changes.count, 1, "light")
        verify(Qt.colorEqual(control.border, "#D2D4D6"))
        // The light palette leaves the warning colour unset: invalid, not the literal fallback.
        compare(control.warning.valid, false)
    }

    function test_valuesReadFromQml() {
        const pal = paletteProvider.palette
        verify(Qt.colorEqual(pal.contentSubPrimary, "#B2FFFFFF"), "alpha comes first")
        compare(pal.persistentAccentPrimary.valid, false)
        compare(typeof pal.id, "undefined")
        verify(Qt.colorEqual(pal.greenSubPrimary.startColor, "#296AD62B"))
        compare(pal.greenSubPrimary.stopPoint, 1.0)
        let failed = false
        try {
            pal.contentPrimary = "red"
        } catch (e) {
            failed = true
        }
        verify(failed, "read-only")
    }
}
