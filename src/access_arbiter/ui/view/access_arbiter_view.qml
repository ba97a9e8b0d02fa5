import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import QtQuick.Window
import "qrc:/ui_kit/qml/base/" as UiKitBase
import accessArbiter.UserDecision 1.0

Window {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    readonly property int contentMargin: 16

    title: "AccessArbiter"
    width: 320
    height: 156
    // The view dies before the engine: the binding then reads a null context property and hides.
    visible: accessArbiterView ? accessArbiterView.isVisible : false
    color: "transparent"

    Rectangle {
        id: rect

        height: 156
        width: 320
        radius: 12
        color: "#171F1D"
        border.color: pal ? pal.contentBackground : "#1FFFFFFF"
        border.width: 1

        ColumnLayout {
            id: layout

            readonly property int textPreferredWidth: width - anchors.margins

            anchors.centerIn: parent
            width: rect.width - root.contentMargin * 2
            anchors.margins: root.contentMargin
            spacing: 14

            UiKitBase.TextLabel {
                id: title

                Layout.preferredWidth: layout.textPreferredWidth
                Layout.alignment: Qt.AlignLeft
                text: qsTranslate("access_arbiter_view", "$Title$")
                font.pixelSize: 16
                font.weight: Font.Medium
                horizontalAlignment: Text.AlignLeft
            }

            UiKitBase.TextLabel {
                id: description

                Layout.preferredWidth: layout.textPreferredWidth
                Layout.alignment: Qt.AlignLeft
                visible: true
                text: qsTranslate("access_arbiter_view", "$Description$")
                font.pixelSize: 14
                color: "#B8FFFFFF"
                horizontalAlignment: Text.AlignLeft
            }

            RowLayout {
                Layout.preferredHeight: 40
                Layout.preferredWidth: layout.textPreferredWidth
                Layout.alignment: Qt.AlignBottom
                spacing: 8

                UiKitBase.PushButton {
                    Layout.fillHeight: true
                    Layout.fillWidth: true
                    text: qsTranslate("access_arbiter_view", "$Decline$")
                    fontPixelSize: 14
                    radius: 12
                    state: "Alternative"
                    onClicked: accessArbiterView.OnUserDecisionReceived(UserDecision.Decline)
                }

                UiKitBase.PushButton {
                    Layout.fillHeight: true
                    Layout.fillWidth: true
                    text: qsTranslate("access_arbiter_view", "$Approve$")
                    fontPixelSize: 14
                    radius: 12
                    state: "SystemWarning"
                    onClicked: accessArbiterView.OnUserDecisionReceived(UserDecision.Approve)
                }
            }
        }
    }
}
