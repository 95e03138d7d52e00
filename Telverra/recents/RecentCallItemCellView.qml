import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// One call of the history: avatar, who or what, and when. Activating it (double click, Enter) calls again; its menu
// (right click, the Menu key) holds the rest.
ActionDelegate {
    id: cell

    required property var viewModel
    required property int index
    required property string destinationValue
    required property string rowKind
    required property string title
    required property string subtitle
    required property string relativeDate
    required property string symbolName
    required property string callType
    required property bool hasContact
    required property string contactInitials
    required property string contactPhoto

    objectName: "recent-" + index
    height: 58
    Accessible.name: [title, subtitle, relativeDate].map(text => text.trim()).filter(text => text.length > 0).join(", ")


    contentItem: RowLayout {
        spacing: 12
        AvatarImageView {
            objectName: "recentAvatar"
            size: 38
            callType: cell.callType
            rowKind: cell.rowKind
            symbolName: cell.symbolName
            hasContact: cell.hasContact
            initials: cell.contactInitials
            photo: cell.contactPhoto
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 1
            visible: cell.rowKind !== "none"
            Label {
                Layout.fillWidth: true
                text: cell.title
                font.pixelSize: cell.rowKind === "personal" ? 17 : 15
                font.bold: true
                elide: Text.ElideRight
                Accessible.ignored: true // read in the row's name
            }
            Label {
                Layout.fillWidth: true
                text: cell.subtitle
                font.pixelSize: 12
                color: cell.palette.placeholderText
                elide: Text.ElideRight
                Accessible.ignored: true
            }
        }
        Item { Layout.fillWidth: cell.rowKind === "none" }
        Label {
            objectName: "relativeDate"
            text: cell.relativeDate
            font.pixelSize: 12
            color: cell.palette.placeholderText
            Accessible.ignored: true
        }
    }

    onActivated: cell.viewModel.recallRecentAt(cell.index)
    onMenuRequested: contextMenu.popup()

    Menu {
        id: contextMenu
        objectName: "recentMenu"
        ActionMenuItem {
            text: qsTr("Add to favorites")
            icon.source: "image://symbols/star.fill?color=" + String(cell.palette.windowText).substring(1)
            onTriggered: cell.viewModel.addRecentToFavoritesAt(cell.index)
        }
        ActionMenuItem {
            text: qsTr("Copy Value to clipboard")
            icon.source: "image://symbols/doc.on.doc.fill?color=" + String(cell.palette.windowText).substring(1)
            onTriggered: cell.viewModel.copyRecentValueAt(cell.index)
        }
        MenuSeparator {}
        ActionMenuItem {
            text: qsTr("Remove from history")
            icon.source: "image://symbols/trash.circle.fill?color=" + String(cell.palette.windowText).substring(1)
            onTriggered: cell.viewModel.removeRecentAt(cell.index)
        }
    }
}
