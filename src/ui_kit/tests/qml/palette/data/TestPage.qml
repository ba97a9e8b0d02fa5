import QtQuick

// A stand-in page for CommonWindow's tests.
Item {
    objectName: "testPage"
}
