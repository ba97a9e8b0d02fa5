import QtQuick
import "qrc:/ui_kit/qml/base/" as UiKitBase
import "../parts"

// A notice and an error notice.
SpecimenFrame {
    title: "Toast"
    UiKitBase.Toast { message: "Settings saved" }
    UiKitBase.Toast { isError: true; message: "The server could not be reached" }
    UiKitBase.Toast { maxTextWidth: 260; maxLinesCount: 2; message: "A longer notice that needs two lines to say what happened" }
}
