pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

ApplicationWindow {
    id: window

    width: 960
    height: 640
    minimumWidth: 640
    minimumHeight: 480
    visible: true
    title: "Telverra"

    ColumnLayout {
        anchors.centerIn: parent
        spacing: 12

        Label {
            Layout.alignment: Qt.AlignHCenter
            text: "Telverra"
            font.pixelSize: 40
            font.bold: true
        }
        Label {
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Calls, messages, mail and meetings from one window.")
            color: window.palette.placeholderText
        }
    }
}
