import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Tooltips of the task bar and of the controls.
SpecimenFrame {
    title: "TaskbarTooltip, AppButtonTooltip, AppWindowTooltip, ControlsTooltip"
    Row {
        spacing: 16
        UiKitBase.TaskbarTooltip { text: "Arrow down"; shown: true }
        UiKitBase.TaskbarTooltip { text: "Arrow up"; shown: true; arrowDirection: UiKitBase.TaskbarTooltip.ArrowDirection.Up }
        UiKitBase.TaskbarTooltip { text: "Transposed"; shown: true; transposed: true }
    }
    Row {
        spacing: 16
        UiKitBase.AppButtonTooltip { text: "Settings"; shown: true }
        UiKitBase.AppWindowTooltip { text: "A window title long enough to be wrapped at the tooltip’s width"; shown: true }
    }
    Item {
        width: 300; height: 90
        Rectangle {
            x: 100; y: 56; width: 100; height: 30; radius: 8; color: "#1FFFFFFF"
            UiKitBase.ControlsTooltip { text: "Tooltip"; visible: true }
        }
    }
}
