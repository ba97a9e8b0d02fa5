// A calendar popup: a month grid of 36 x 24 cells under a header that steps through the months
// of the years 2000 to 2090. Choosing a day sets `selectedDate`, emits `dateSelected` and closes.
import QtQuick
import QtQuick.Controls

Popup {
    id: root

    property var pal: paletteProvider ? paletteProvider.palette : null
    property date selectedDate: new Date()
    property int shownYear: root.selectedDate.getFullYear()
    property int shownMonth: root.selectedDate.getMonth()
    readonly property int firstYear: 2000
    readonly property int lastYear: 2090
    readonly property int cellWidth: 36
    readonly property int cellHeight: 24

    signal dateSelected(date date)

    function daysInMonth(year, month) {
        return new Date(year, month + 1, 0).getDate()
    }

    // Monday first.
    function firstWeekday(year, month) {
        return (new Date(year, month, 1).getDay() + 6) % 7
    }

    function stepMonth(delta) {
        let month = root.shownMonth + delta
        let year = root.shownYear
        if (month < 0) { month = 11; year -= 1 }
        if (month > 11) { month = 0; year += 1 }
        if (year < root.firstYear || year > root.lastYear)
            return
        root.shownYear = year
        root.shownMonth = month
    }

    function choose(day) {
        root.selectedDate = new Date(root.shownYear, root.shownMonth, day)
        root.dateSelected(root.selectedDate)
        root.close()
    }

    padding: 12
    focus: true

    background: Rectangle {
        radius: 12
        color: root.pal ? root.pal.backgroundSecondary : "#242424"
    }

    contentItem: Column {
        spacing: 8

        Row {
            spacing: 4

            Image {
                objectName: "previousMonth"
                width: 24
                height: 24
                source: "qrc:/ui_kit/images/left"
                sourceSize.width: 24
                sourceSize.height: 24
                opacity: root.shownYear > root.firstYear || root.shownMonth > 0 ? 1.0 : 0.3
                MouseArea { anchors.fill: parent; onClicked: root.stepMonth(-1) }
            }

            TextLabel {
                objectName: "title"
                width: root.cellWidth * 7 - 56
                height: 24
                horizontalAlignment: Text.AlignHCenter
                verticalAlignment: Text.AlignVCenter
                font.pixelSize: 14
                text: Qt.locale().standaloneMonthName(root.shownMonth) + " " + root.shownYear
            }

            Image {
                objectName: "nextMonth"
                width: 24
                height: 24
                source: "qrc:/ui_kit/images/right"
                sourceSize.width: 24
                sourceSize.height: 24
                opacity: root.shownYear < root.lastYear || root.shownMonth < 11 ? 1.0 : 0.3
                MouseArea { anchors.fill: parent; onClicked: root.stepMonth(1) }
            }
        }

        Grid {
            objectName: "grid"
            columns: 7

            Repeater {
                model: 7
                TextPromt {
                    required property int index
                    width: root.cellWidth
                    height: root.cellHeight
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    font.pixelSize: 12
                    text: Qt.locale().dayName((index + 1) % 7, Locale.ShortFormat).slice(0, 2)
                }
            }

            Repeater {
                model: root.firstWeekday(root.shownYear, root.shownMonth)
                Item { width: root.cellWidth; height: root.cellHeight }
            }

            Repeater {
                model: root.daysInMonth(root.shownYear, root.shownMonth)

                Rectangle {
                    required property int index
                    readonly property int day: index + 1
                    readonly property bool selected: root.selectedDate.getFullYear() === root.shownYear
                                                     && root.selectedDate.getMonth() === root.shownMonth
                                                     && root.selectedDate.getDate() === day
                    width: root.cellWidth
                    height: root.cellHeight
                    radius: 6
                    color: selected ? (root.pal ? root.pal.purplePrimary : "#9C9CFF")
                         : dayArea.containsMouse ? (root.pal ? root.pal.contentBackground : "#1FFFFFFF")
                         : "transparent"

                    TextLabel {
                        anchors.centerIn: parent
                        font.pixelSize: 14
                        text: parent.day
                    }

                    MouseArea {
                        id: dayArea
                        anchors.fill: parent
                        hoverEnabled: true
                        onClicked: root.choose(parent.day)
                    }
                }
            }
        }
    }
}
