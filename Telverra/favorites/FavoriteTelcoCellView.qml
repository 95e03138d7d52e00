import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// One saved link: its name, the label of its kind and the address, with a handle to drag it elsewhere in the list.
// Activating it (double click, Enter, Space) opens it; Alt+Up and Alt+Down move it; Delete asks before removing it.
ActionDelegate {
    id: cell

    required property var favoritesView
    required property int index
    required property string name
    required property string kind
    required property string value
    required property var record

    objectName: "telco-" + index
    width: ListView.view ? ListView.view.width : implicitWidth
    leftPadding: 4
    Accessible.name: name + ", " + kind + ", " + value

    onActivated: favoritesView.openTelco(value)
    onMenuRequested: favoritesView.openTelcoMenu(index)
    Keys.onDeletePressed: favoritesView.confirmTelcoRemoval(index, name)
    Keys.onUpPressed: event => {
        if (event.modifiers & Qt.AltModifier)
            favoritesView.moveTelco(index, index - 1)
        else
            event.accepted = false
    }
    Keys.onDownPressed: event => {
        if (event.modifiers & Qt.AltModifier)
            favoritesView.moveTelco(index, index + 1)
        else
            event.accepted = false
    }

    contentItem: RowLayout {
        spacing: 8
        // The drag handle: the row goes where it is let go.
        SymbolIcon {
            id: handle
            objectName: "dragHandle"
            name: "line.3.horizontal"
            size: 20
            color: cell.palette.placeholderText
            MouseArea {
                anchors.fill: parent
                anchors.margins: -6
                cursorShape: Qt.SizeVerCursor
                onPressed: cell.favoritesView.beginTelcoDrag(cell.index)
                onPositionChanged: mouse => cell.favoritesView.dragTelcoTo(mapToItem(cell.ListView.view, mouse.x, mouse.y).y)
                onReleased: cell.favoritesView.endTelcoDrag()
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            Label {
                Layout.fillWidth: true
                text: cell.name
                font.pixelSize: 19
                elide: Text.ElideRight
                Accessible.ignored: true // read in the row's name
            }
            Label {
                Layout.fillWidth: true
                text: cell.kind
                font.pixelSize: 14
                font.bold: true
                Accessible.ignored: true
            }
            Label {
                Layout.fillWidth: true
                text: cell.value
                font.pixelSize: 12
                color: cell.palette.placeholderText
                elide: Text.ElideMiddle
                Accessible.ignored: true
            }
        }
    }
}
