import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Read-only scrolling texts and the server list.
SpecimenFrame {
    title: "ScrollingText, ManualScrollingText, DnsMultilineText, ScrollHandle"
    UiKitBase.ScrollingText {
        width: 405; height: 120
        text: "Licence terms. ".repeat(40)
    }
    UiKitBase.ManualScrollingText {
        id: manual
        width: 405; height: 100
        Component.onCompleted: { manual.appendText("First piece of a log. "); manual.appendText("A second piece arrives later.") }
    }
    UiKitBase.DnsMultilineText { width: 300; servers: ["10.0.0.1", "10.0.0.2", "192.168.1.1", "8.8.8.8"] }
    Row {
        spacing: 12
        UiKitBase.ScrollHandle { height: 60; hasFocus: true }
        UiKitBase.ScrollHandle { height: 60 }
    }
}
