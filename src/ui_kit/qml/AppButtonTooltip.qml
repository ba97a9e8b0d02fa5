// The tooltip of an AppButton: the application's name on a fixed dark bubble.
import QtQuick

TaskbarTooltip {
    radius: 12
    backgroundColor: "#242424"
    textColor: "#FFFFFFFA"
}
