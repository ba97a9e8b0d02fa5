import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Corners on and off, with and without a border.
SpecimenFrame {
    title: "RoundedRect, Outline"
    Row {
        spacing: 16
        UiKitBase.RoundedRect { width: 96; height: 60; color: "#8C8CFF" }
        UiKitBase.RoundedRect { width: 96; height: 60; color: "#8C8CFF"; radius: 16; drawTopRightCorner: false; drawBottomRightCorner: false }
        UiKitBase.RoundedRect { width: 96; height: 60; color: "#8C8CFF"; drawTopLeftCorner: false; drawTopRightCorner: false; drawBottomRightCorner: false; drawBottomLeftCorner: false }
        UiKitBase.RoundedRect { width: 96; height: 60; color: "transparent"; radius: 12; borderColor: "#F3BD3D"; borderWidth: 4 }
        Item {
            width: 104; height: 68
            Rectangle { x: 4; y: 4; width: 96; height: 60; radius: 12; color: "#1FFFFFFF"; UiKitBase.Outline {} }
        }
    }
}
