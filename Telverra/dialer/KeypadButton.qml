import QtQuick
import QtQuick.Controls
import Telverra

// One key of the pad: its label at size 24 in a 60×60 circle; the "0" key carries a small "+".
ActionButton {
    id: keyButton

    property string key
    signal longPressed()
    signal tapped()
    property bool held: false

    objectName: "key-" + key
    width: 60
    height: 60
    focusPolicy: Qt.NoFocus
    Accessible.name: key === "0" ? qsTr("0, hold for +") : key

    contentItem: Item {
      Column {
        anchors.centerIn: parent
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            text: keyButton.key
            font.pixelSize: 24
            color: "white"
            Accessible.ignored: true // the key's name says it
        }
        Label {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: keyButton.key === "0"
            text: "+"
            font.pixelSize: 12
            color: "white"
            Accessible.ignored: true
        }
      }
    }
    background: Rectangle {
        radius: width / 2
        color: keyButton.down ? "#c8c8cc" : "#8e8e93"
    }

    // Held for half a second it is a long press; the release still completes it with a tap (which then enters "+").
    Timer {
        id: holdTimer
        interval: 500
        onTriggered: { keyButton.held = true; keyButton.longPressed() }
    }
    onPressed: holdTimer.start()
    onReleased: { holdTimer.stop(); held = false; tapped() }
    onCanceled: { holdTimer.stop(); held = false }
}
