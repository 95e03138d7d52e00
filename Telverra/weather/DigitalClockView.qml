import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The time, ticking every second, with the date beneath it.
ColumnLayout {
    id: clock

    property date date: new Date()

    spacing: 0
    Timer {
        interval: 1000
        repeat: true
        running: true
        onTriggered: clock.date = new Date()
    }
    Label {
        objectName: "clockTime"
        Layout.alignment: Qt.AlignHCenter
        text: Qt.formatTime(clock.date, "HH:mm")
        font.pixelSize: 40
    }
    Label {
        objectName: "clockDate"
        Layout.alignment: Qt.AlignHCenter
        text: clock.date.toLocaleDateString(Qt.locale(), "dddd, d MMM yyyy")
        font.pixelSize: 11
        color: clock.palette.placeholderText
    }
}
