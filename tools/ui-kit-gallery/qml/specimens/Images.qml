import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// Every image of the kit, by its resource name.
SpecimenFrame {
    title: "Images"
    Grid {
        columns: 6
        spacing: 12
        Repeater {
            model: ["left", "right", "lineedit/reset_text", "backbutton/back_icon", "logo_hc", "logo_big",
                    "hos_logo", "main_logo_hc", "main_logo_hc_transparent", "critical_icon", "error_icon",
                    "warning_icon", "warning_icon_white", "close_icon", "combobox/magnifier_icon",
                    "combobox/indicator_icon", "check_mark_icon_enable", "check_mark_icon_disable",
                    "settings_gear", "settings_gear_disabled", "calendar", "more_menu", "loader_small",
                    "loader_big"]
            Column {
                required property string modelData
                width: 120
                spacing: 4
                Rectangle {
                    width: 120; height: 64; radius: 8; color: "#1FFFFFFF"
                    Image {
                        anchors.centerIn: parent
                        width: Math.min(implicitWidth, 112); height: Math.min(implicitHeight, 56)
                        fillMode: Image.PreserveAspectFit
                        source: "qrc:/ui_kit/images/" + modelData
                    }
                }
                UiKitBase.TextPromt { width: 120; font.pixelSize: 10; text: modelData; wrapMode: Text.WrapAnywhere }
            }
        }
    }
}
