import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// The spinner in both sizes, stopped on its first frame so that the picture stays the same.
SpecimenFrame {
    title: "Loader"
    Row {
        spacing: 24
        UiKitBase.Loader { loaderSize: "Small"; running: false }
        UiKitBase.Loader { loaderSize: "Big"; running: false }
    }
}
