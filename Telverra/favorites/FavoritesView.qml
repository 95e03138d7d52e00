import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The favourites: favourite contacts (drawn as on the contacts screen), saved meeting links ("telcos") with their
// editor, and favourite actions. Links are reordered by dragging or with Alt+Up and Alt+Down, and the order is kept.
Item {
    id: view

    required property var viewModel
    readonly property var contacts: viewModel.favoriteContactsModel
    readonly property var telcos: viewModel.favoriteTelcosModel
    property alias screen: contactsScreen
    property string menuContact
    property int menuTelco: -1
    property int removal: -1
    property int dragFrom: -1
    property int dragTo: -1

    function openLinkEditor() { editor.openToAdd() }
    // What the rows ask for.
    function openContactMenu(identifier, name) {
        menuContact = identifier
        contactMenu.popup()
    }
    function openTelcoMenu(row) {
        menuTelco = row
        telcoMenu.popup()
    }
    function openTelco(value) { viewModel.makeCallFromText(value) }
    function moveTelco(from, to) {
        if (to < 0 || to >= telcos.count)
            return
        viewModel.moveFavoriteTelco(from, to)
        telcoList.currentIndex = to
        telcoList.forceActiveFocus()
    }
    function confirmTelcoRemoval(row, name) {
        removal = row
        removeConfirmation.text = qsTr("Remove “%1” from your favorites?").arg(name)
        removeConfirmation.open()
    }
    function editTelco(row) {
        const item = telcoList.itemAtIndex(row)
        viewModel.selectedFavoriteTelco = item.record
        editor.openToEdit(item.name, item.value)
    }
    // Scrolls the page so that the row with the keyboard focus is in view.
    function reveal(row) {
        if (!row)
            return
        const page = scroll.contentItem
        const top = row.mapToItem(page.contentItem, 0, 0).y
        if (top < page.contentY)
            page.contentY = top
        else if (top + row.height > page.contentY + page.height)
            page.contentY = top + row.height - page.height
    }
    function beginTelcoDrag(row) {
        dragFrom = row
        dragTo = row
    }
    function dragTelcoTo(y) {
        const row = telcoList.indexAt(10, telcoList.contentY + y)
        dragTo = row >= 0 ? row : (y < 0 ? 0 : telcos.count - 1)
    }
    function endTelcoDrag() {
        if (dragFrom >= 0 && dragTo >= 0 && dragFrom !== dragTo)
            moveTelco(dragFrom, dragTo)
        dragFrom = -1
        dragTo = -1
    }

    ContactsScreen {
        id: contactsScreen
        service: view.viewModel.contactsDataService
    }

    component SectionHeader: RowLayout {
        property alias title: title.text
        property int count: 0
        property bool counted: true
        Layout.fillWidth: true
        Layout.topMargin: 14
        spacing: 10
        Label {
            id: title
            font.pixelSize: 22
            font.bold: true
            Accessible.role: Accessible.Heading
        }
        Label {
            objectName: "count"
            visible: parent.counted
            //: How many favourite contacts or meeting links there are
            text: qsTr("total of %n", "", parent.count)
            color: view.palette.placeholderText
            Layout.alignment: Qt.AlignBaseline
        }
    }

    ScrollView {
        id: scroll
        anchors.fill: parent
        contentWidth: availableWidth
        ScrollBar.horizontal.policy: ScrollBar.AlwaysOff // nothing to scroll sideways
        ScrollBar.vertical: ActionScrollBar {
            parent: scroll
            x: scroll.mirrored ? 0 : scroll.width - width
            y: scroll.topPadding
            height: scroll.availableHeight
        }

        ColumnLayout {
            width: parent.width - 24
            x: 12
            spacing: 6

            SectionHeader {
                objectName: "contactsHeader"
                title: qsTr("Contacts")
                count: view.contacts.contactCount
            }
            ListView {
                objectName: "favoriteContacts"
                Layout.fillWidth: true
                implicitHeight: contentHeight
                interactive: false
                activeFocusOnTab: true
                keyNavigationEnabled: true
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Favourite contacts")
                onCurrentItemChanged: if (activeFocus) view.reveal(currentItem)
                onActiveFocusChanged: if (activeFocus) view.reveal(currentItem)
                model: view.contacts
                delegate: ContactsCellView {
                    viewModel: view.viewModel
                    contactsView: view
                }
            }
            Label {
                objectName: "contactsHint"
                visible: view.contacts.contactCount === 0
                text: qsTr("Add contacts from the Contacts screen or the history.")
                color: view.palette.placeholderText
            }

            SectionHeader {
                objectName: "telcosHeader"
                title: qsTr("Telcos")
                count: view.telcos.count
                Item { Layout.fillWidth: true }
                ActionToolButton {
                    objectName: "addTelco"
                    Accessible.name: qsTr("Add a meeting link")
                    ToolTip.visible: hovered
                    ToolTip.text: Accessible.name
                    contentItem: SymbolIcon { name: "plus"; size: 20 }
                    onClicked: editor.openToAdd()
                }
            }
            ListView {
                id: telcoList
                objectName: "favoriteTelcos"
                Layout.fillWidth: true
                implicitHeight: contentHeight
                interactive: false
                activeFocusOnTab: true
                keyNavigationEnabled: true
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Saved links")
                onCurrentItemChanged: if (activeFocus) view.reveal(currentItem)
                onActiveFocusChanged: if (activeFocus) view.reveal(currentItem)
                model: view.telcos
                delegate: FavoriteTelcoCellView { favoritesView: view }
                // Where a dragged link would land.
                Rectangle {
                    visible: view.dragFrom >= 0 && view.dragTo !== view.dragFrom
                    width: parent.width
                    height: 2
                    color: view.palette.highlight
                    y: {
                        const row = telcoList.itemAtIndex(Math.max(0, view.dragTo))
                        return row ? (view.dragTo > view.dragFrom ? row.y + row.height : row.y) : 0
                    }
                }
            }
            Label {
                objectName: "telcosHint"
                visible: view.telcos.count === 0
                text: qsTr("Add a meeting link with +")
                color: view.palette.placeholderText
            }

            SectionHeader {
                objectName: "actionsHeader"
                title: qsTr("Actions")
                counted: false
            }
        }
    }

    Menu {
        id: contactMenu
        objectName: "favoriteContactMenu"
        ActionMenuItem {
            text: qsTr("Remove from Favorites")
            icon.source: "image://symbols/trash.fill?color=" + String(view.palette.windowText).substring(1)
            onTriggered: {
                view.viewModel.favoritesDataService.removeFavoriteContact(view.menuContact)
                view.viewModel.favoritesDataService.fetchFavoriteContacts()
            }
        }
    }
    Menu {
        id: telcoMenu
        objectName: "telcoMenu"
        ActionMenuItem {
            text: qsTr("Copy Value to clipboard")
            icon.source: "image://symbols/doc.on.doc.fill?color=" + String(view.palette.windowText).substring(1)
            onTriggered: view.viewModel.copyValueToClipboard(telcoList.itemAtIndex(view.menuTelco).value)
        }
        ActionMenuItem {
            text: qsTr("Edit favorite")
            icon.source: "image://symbols/pencil.circle.fill?color=" + String(view.palette.windowText).substring(1)
            onTriggered: view.editTelco(view.menuTelco)
        }
        MenuSeparator {}
        ActionMenuItem {
            text: qsTr("Remove from Favorites")
            icon.source: "image://symbols/trash.fill?color=" + String(view.palette.windowText).substring(1)
            onTriggered: view.telcos.removeAt(view.menuTelco)
        }
    }

    AddNewFavoriteTelcoView {
        id: editor
        viewModel: view.viewModel
    }

    ActionDialog {
        id: removeConfirmation
        objectName: "removeConfirmation"
        property alias text: question.text
        anchors.centerIn: parent
        modal: true
        title: qsTr("Remove from Favorites")
        standardButtons: Dialog.Cancel | Dialog.Ok
        // A fixed width keeps the wrapped question from feeding back into the dialog's own size.
        width: Math.min(460, view.width * 0.8)
        Label { id: question; wrapMode: Text.Wrap; width: removeConfirmation.availableWidth }
        Component.onCompleted: {
            standardButton(Dialog.Ok).text = qsTr("Remove")
            standardButton(Dialog.Cancel).text = qsTr("Cancel")
        }
        onAccepted: view.telcos.removeAt(view.removal)
    }
}
