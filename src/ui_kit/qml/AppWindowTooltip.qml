// The tooltip of one window entry of AppWindows: the window's title, wrapped at 290 px.
import QtQuick

TaskbarTooltip {
    maxTextWidth: 290
}
