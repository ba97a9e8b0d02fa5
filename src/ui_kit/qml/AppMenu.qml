// A page header: the logo, a caption, the user's avatar and a settings button. The settings
// button emits `buttonActivated` on a click, Enter, Return or Space. The avatar is looked up
// under the client application's own images, which this kit does not carry.
import QtQuick

Item {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string caption: ""
    property url logoSource: "qrc:/ui_kit/images/logo_hc"
    property url avatarSource: "qrc:/rdp_client/images/icon-avatar"
    property bool settingsEnabled: true

    signal buttonActivated()

    implicitWidth: 1018
    implicitHeight: 72

    Image {
        id: logo
        objectName: "logo"
        anchors.left: parent.left
        anchors.leftMargin: 24
        anchors.verticalCenter: parent.verticalCenter
        source: root.logoSource
        sourceSize.height: 32
    }

    TextLabel {
        objectName: "caption"
        anchors.left: logo.right
        anchors.leftMargin: 16
        anchors.right: avatar.left
        anchors.rightMargin: 16
        anchors.verticalCenter: parent.verticalCenter
        wrapMode: Text.NoWrap
        elide: Text.ElideRight
        font.pixelSize: 20
        font.weight: Font.Medium
        text: root.caption
    }

    Image {
        id: avatar
        objectName: "avatar"
        anchors.right: settings.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        width: 40
        height: 40
        sourceSize.width: 40
        sourceSize.height: 40
        source: root.avatarSource
    }

    Rectangle {
        id: settings
        objectName: "settingsButton"
        anchors.right: parent.right
        anchors.rightMargin: 24
        anchors.verticalCenter: parent.verticalCenter
        width: 40
        height: 40
        radius: 12
        activeFocusOnTab: true
        enabled: root.settingsEnabled
        color: settingsArea.containsMouse || settings.activeFocus
               ? (root.pal ? root.pal.contentBorder : "#29FFFFFF")
               : (root.pal ? root.pal.contentBackground : "#14FFFFFF")

        Keys.onSpacePressed: root.buttonActivated()
        Keys.onEnterPressed: root.buttonActivated()
        Keys.onReturnPressed: root.buttonActivated()

        Image {
            anchors.centerIn: parent
            source: settings.enabled ? "qrc:/ui_kit/images/settings_gear"
                                     : "qrc:/ui_kit/images/settings_gear_disabled"
            sourceSize.width: 24
            sourceSize.height: 24
        }

        Outline {
            visible: settings.activeFocus
        }

        MouseArea {
            id: settingsArea
            anchors.fill: parent
            hoverEnabled: true
            onClicked: root.buttonActivated()
        }

        RightClickedMouseArea {}
    }
}
