pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The number pad: 7 8 9 on top, like a computer keypad; the display accepts typing and pasting.
Item {
    id: dialerView

    required property var viewModel
    property bool active: true
    readonly property var dialer: viewModel.dialer

    onActiveChanged: if (active) displayField.forceActiveFocus()

    ColumnLayout {
        anchors.centerIn: parent
        spacing: 14

        Rectangle {
            Layout.preferredWidth: 260
            Layout.preferredHeight: 52
            Layout.alignment: Qt.AlignHCenter
            radius: 10
            color: dialerView.palette.window
            border.color: dialerView.palette.mid

            TextField {
                id: displayField
                objectName: "display"
                anchors.fill: parent
                anchors.margins: 4
                horizontalAlignment: TextInput.AlignHCenter
                font.pixelSize: 24
                background: null
                placeholderText: qsTr("number")
                Accessible.name: qsTr("Number")
                text: dialerView.dialer.display
                onTextEdited: dialerView.viewModel.validateDialerDisplay(text)
                onAccepted: dialerView.viewModel.makeCallFromDialer()
            }
        }

        Label {
            objectName: "invalidNumberWarning"
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("invalid number")
            color: "orange"
            font.pixelSize: 12
            opacity: dialerView.dialer.isInvalidNumber && dialerView.dialer.display.length > 0 ? 1 : 0
        }
        Label {
            objectName: "invalidClipboardWarning"
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("invalid URL on Clipboard")
            color: "orange"
            font.pixelSize: 12
            opacity: dialerView.dialer.isInvalidNumberFromClipBoard && dialerView.dialer.display.length > 0 ? 1 : 0
        }

        Grid {
            objectName: "keypad"
            Layout.alignment: Qt.AlignHCenter
            columns: 3
            spacing: 16
            Repeater {
                model: ["7", "8", "9", "4", "5", "6", "1", "2", "3", "*", "0", "#"]
                delegate: KeypadButton {
                    required property string modelData
                    key: modelData
                    onLongPressed: dialerView.viewModel.longPressDialerKey(key)
                    onTapped: { dialerView.viewModel.pressDialerKey(key); displayField.forceActiveFocus() }
                }
            }
        }

        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            spacing: 16

            ActionButton {
                objectName: "clipboardButton"
                Accessible.name: qsTr("Call from clipboard")
                focusPolicy: Qt.NoFocus
                Layout.preferredWidth: 60
                Layout.preferredHeight: 60
                contentItem: SymbolIcon { name: "doc.on.clipboard"; size: 26; color: "white" }
                background: Rectangle { radius: 30; color: parent.down ? "#c8c8cc" : "#8e8e93" }
                onClicked: dialerView.viewModel.makeCallFromClipboard()
            }
            ActionButton {
                objectName: "callButton"
                Accessible.name: qsTr("Call")
                focusPolicy: Qt.NoFocus
                Layout.preferredWidth: 60
                Layout.preferredHeight: 60
                contentItem: Label {
                    text: "✆"
                    font.pixelSize: 40
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    color: parent.down ? "#34c759" : "white"
                    Accessible.ignored: true
                }
                background: Rectangle { radius: 30; color: parent.down ? "white" : "#34c759" }
                onClicked: dialerView.viewModel.makeCallFromDialer()
            }
            ActionButton {
                objectName: "deleteButton"
                Accessible.name: qsTr("Delete")
                focusPolicy: Qt.NoFocus
                Layout.preferredWidth: 60
                Layout.preferredHeight: 60
                contentItem: SymbolIcon { name: "delete.left.fill"; size: 26; color: dialerView.palette.windowText }
                background: Rectangle { radius: 30; color: dialerView.palette.windowText; opacity: parent.down ? 0.8 : 0.3 }
                onClicked: dialerView.viewModel.deleteLastDialerCharacter()
            }
        }
    }
}
