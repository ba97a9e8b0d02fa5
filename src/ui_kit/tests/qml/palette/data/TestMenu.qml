import QtQuick

// A stand-in menu page for CommonWindow's tests: counts the steps it is asked for.
Item {
    property int previousCount: 0
    property int nextCount: 0
    function selectPrevious() { previousCount += 1 }
    function selectNext() { nextCount += 1 }
}
