// Gives its parent the active focus on a right click. Only the right button is accepted, so left
// presses and clicks reach the control underneath unchanged.
import QtQuick

MouseArea {
    anchors.fill: parent
    acceptedButtons: Qt.RightButton

    onClicked: parent.forceActiveFocus()
}
