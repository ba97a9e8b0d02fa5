import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The frame of one specimen: the palette's background, the control's name, and the content below.
Rectangle {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property string title: ""
    default property alias content: body.data

    implicitWidth: Math.max(titleLabel.implicitWidth, body.implicitWidth) + 32
    implicitHeight: titleLabel.implicitHeight + body.implicitHeight + 40
    width: implicitWidth
    height: implicitHeight
    radius: 12
    color: root.pal ? root.pal.backgroundPrimary : "#050505"

    UiKitBase.TextLabel {
        id: titleLabel
        x: 16
        y: 12
        text: root.title
        font.pixelSize: 12
        wrapMode: Text.NoWrap
        color: root.pal ? root.pal.contentSecondary : "#AFB5BC"
    }

    Column {
        id: body
        x: 16
        y: titleLabel.y + titleLabel.height + 12
        spacing: 12
    }
}
