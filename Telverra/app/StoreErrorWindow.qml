import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// Shown when the history store cannot be opened, before the program stops: which file, what went wrong, that nothing
// was touched, and how to start again with an empty history.
ApplicationWindow {
    id: window

    required property string storeFile
    required property string error

    title: qsTr("Telverra cannot open its history")
    width: 600
    height: content.implicitHeight + 40
    minimumWidth: 420
    visible: true

    ColumnLayout {
        id: content
        anchors.fill: parent
        anchors.margins: 20
        spacing: 12

        RowLayout {
            spacing: 12
            // At the top of its row: the title wraps while the window is first laid out, and the icon, centred in
            // that taller row, would stay down among the texts below.
            SymbolIcon {
                Layout.alignment: Qt.AlignLeft | Qt.AlignTop
                name: "exclamationmark.triangle.fill"
                size: 32
                color: "#e08a00"
            }
            Label {
                Layout.fillWidth: true
                text: qsTr("Telverra cannot open its history")
                font.pixelSize: 18
                font.bold: true
                wrapMode: Text.Wrap
            }
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("The file that keeps your call history and favourites could not be opened:")
            wrapMode: Text.Wrap
        }
        TextField {
            objectName: "storeFile"
            Layout.fillWidth: true
            text: window.storeFile
            readOnly: true
            selectByMouse: true
            Accessible.name: qsTr("Store file")
        }
        Label {
            objectName: "storeError"
            Layout.fillWidth: true
            text: window.error
            wrapMode: Text.Wrap
            color: window.palette.placeholderText
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("Nothing was changed or deleted: the file is exactly as it was.")
            wrapMode: Text.Wrap
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("To start with an empty history, move the file aside (for example, rename it to "
                       + "Telverra.sqlite.damaged) and start Telverra again. Keep the moved file if you want to recover it.")
            wrapMode: Text.Wrap
        }
        ActionButton {
            id: quit
            Layout.alignment: Qt.AlignRight
            text: qsTr("Quit")
            Accessible.name: qsTr("Quit")
            focus: true
            onClicked: window.close()
            Keys.onReturnPressed: window.close()
            Keys.onEscapePressed: window.close()
        }
    }
}
