import QtQuick
import QtQuick.Controls
import QtQuick.Window
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The gallery window: every specimen on one scrolling page, and a switch between the palettes.
Window {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null

    width: 1280
    height: 900
    visible: true
    title: "UI kit gallery"
    color: root.pal ? root.pal.backgroundSubPrimary : "#141414"

    Row {
        id: header
        x: 24
        y: 16
        spacing: 16

        UiKitBase.TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: "UI kit gallery"
            font.pixelSize: 24
            font.weight: Font.Medium
        }

        UiKitBase.SlideButton {
            width: 260
            text: "Dark palette"
            description: "Switch between the light and the dark palette"
            checked: paletteSwitch.dark
            onToggled: (checked) => paletteSwitch.dark = checked
        }
    }

    ScrollView {
        anchors.fill: parent
        anchors.topMargin: header.y + header.height + 16
        contentWidth: availableWidth

        Flow {
            width: root.width - 48
            x: 24
            spacing: 16

            Repeater {
                model: specimenNames

                Loader {
                    required property string modelData
                    source: "qrc:/ui_kit_gallery/specimens/" + modelData + ".qml"
                }
            }
        }
    }
}
