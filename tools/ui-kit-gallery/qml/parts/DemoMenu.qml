import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase

// The side menu of the CommonWindow specimen.
UiKitBase.CommonMenu {
    model: ListModel {
        ListElement { name: "Network"; componentUrlFromModel: "" }
        ListElement { name: "Display"; componentUrlFromModel: "" }
        ListElement { name: "Language"; componentUrlFromModel: "" }
        ListElement { name: "About"; componentUrlFromModel: "" }
    }
}
