import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// No "ComponentBehavior: Bound" here: Qt 6.4's ListView cannot create a bound section delegate.
// The address book: a search, the contacts in lettered sections with an alphabet index at the side, and their count.
// Ctrl+F goes to the search and Escape clears it; the arrow keys move through the contacts and Enter calls the one
// selected.
FocusScope {
    id: view

    required property var viewModel
    property bool showAlphabetNavigationMenu: true
    readonly property var contacts: viewModel.contactsModel
    readonly property var service: viewModel.contactsDataService
    readonly property bool searching: viewModel.searchTextForContacts.length > 0
    property alias screen: screen
    property string menuContact

    function focusSearch() {
        search.forceActiveFocus()
        search.selectAll()
    }
    // Brings a letter's section to the top of the list.
    function jumpTo(letter) {
        const row = contacts.firstRowOfLetter(letter)
        if (row >= 0) {
            list.positionViewAtIndex(row, ListView.Beginning)
            list.currentIndex = row
        }
    }
    function openContactMenu(identifier, name) {
        menuContact = identifier
        contactMenu.title = name
        contactMenu.popup()
    }
    function showPermissionAlert() {
        if (viewModel.contactsPermissionErrorDescription.length > 0)
            permissionAlert.open()
    }

    ContactsScreen {
        id: screen
        service: view.service
    }
    onVisibleChanged: if (visible) { screen.appeared(); showPermissionAlert() }
    Component.onCompleted: if (visible) { screen.appeared(); showPermissionAlert() }
    readonly property string permissionError: viewModel.contactsPermissionErrorDescription
    onPermissionErrorChanged: if (visible) showPermissionAlert()
    Shortcut {
        sequence: StandardKey.Find
        enabled: view.visible
        onActivated: view.focusSearch()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            TextField {
                id: search
                objectName: "contactsSearch"
                Layout.fillWidth: true
                placeholderText: qsTr("Search contacts")
                Accessible.name: qsTr("Search contacts")
                text: view.viewModel.searchTextForContacts
                onTextChanged: if (text !== view.viewModel.searchTextForContacts) view.viewModel.searchTextForContacts = text
                Keys.onEscapePressed: text = ""
                Keys.onDownPressed: { list.forceActiveFocus(); if (list.currentIndex < 0) list.currentIndex = 0 }
            }
            ActionToolButton {
                objectName: "alphabetToggle"
                implicitHeight: search.implicitHeight
                implicitWidth: search.implicitHeight
                checkable: true
                checked: view.showAlphabetNavigationMenu
                onToggled: view.showAlphabetNavigationMenu = checked
                Accessible.name: checked ? qsTr("Hide the alphabet index") : qsTr("Show the alphabet index")
                ToolTip.visible: hovered
                ToolTip.text: Accessible.name
                contentItem: SymbolIcon { name: "textformat.abc"; size: 20 }
            }
        }

        RowLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            ListView {
                id: list
                objectName: "contactsList"
                Layout.fillWidth: true
                Layout.fillHeight: true
                clip: true
                focus: true
                activeFocusOnTab: true
                model: view.contacts
                reuseItems: true
                cacheBuffer: 400
                boundsBehavior: Flickable.StopAtBounds
                highlightMoveDuration: 0
                keyNavigationEnabled: true
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Contacts")
                ScrollBar.vertical: ActionScrollBar { policy: ScrollBar.AsNeeded }
                delegate: ContactsCellView {
                    viewModel: view.viewModel
                    contactsView: view
                }
                section.property: "letter"
                section.criteria: ViewSection.FullString
                section.delegate: Label {
                    required property string section
                    width: list.width
                    text: section
                    leftPadding: 10
                    topPadding: 10
                    bottomPadding: 10
                    font.pixelSize: 15
                    font.bold: true
                    color: view.palette.highlight
                    Accessible.role: Accessible.Heading
                    //: A heading of the contact list: the letter the names below it begin with
                    Accessible.name: qsTr("Section %1").arg(section)
                }
            }

            // The alphabet index at the trailing edge: one link per letter.
            Column {
                id: alphabet
                objectName: "alphabetIndex"
                Layout.alignment: Qt.AlignTop | Qt.AlignRight
                Layout.leftMargin: 15
                visible: view.showAlphabetNavigationMenu && view.contacts.letters.length > 0
                readonly property real letterHeight: Math.max(10, Math.min(20, list.height / Math.max(1, view.contacts.letters.length)))
                Repeater {
                    model: view.contacts.letters
                    delegate: ActionControl {
                        id: letterButton
                        required property string modelData
                        objectName: "index-" + modelData
                        anchors.right: parent ? parent.right : undefined
                        height: alphabet.letterHeight
                        leftPadding: 4
                        rightPadding: 4
                        topPadding: 0
                        bottomPadding: 0
                        focusPolicy: Qt.NoFocus
                        Accessible.role: Accessible.Link
                        //: A letter of the alphabet index beside the contact list
                        Accessible.name: qsTr("Go to %1").arg(modelData)
                        contentItem: Label {
                            text: letterButton.modelData
                            font.pixelSize: Math.min(11, alphabet.letterHeight - 2)
                            color: letterButton.hovered ? view.palette.highlight : view.palette.windowText
                            font.underline: letterButton.hovered
                            horizontalAlignment: Text.AlignRight
                            verticalAlignment: Text.AlignVCenter
                            Accessible.ignored: true // the link's name says it
                        }
                        onClicked: view.jumpTo(modelData)
                    }
                }
            }
        }

        Label {
            objectName: "contactsCount"
            text: qsTr("%n contacts", "", view.contacts.contactCount)
            color: view.palette.placeholderText
        }
    }

    // What stands where there is no list to show.
    ColumnLayout {
        objectName: "contactsEmptyState"
        anchors.centerIn: parent
        width: Math.min(parent.width - 60, 460)
        spacing: 10
        visible: view.contacts.contactCount === 0
        readonly property bool reading: view.service.loading && !view.service.loaded

        BusyIndicator {
            Layout.alignment: Qt.AlignHCenter
            visible: parent.reading
            running: visible
            Accessible.name: qsTr("Reading the address book")
        }
        SymbolIcon {
            Layout.alignment: Qt.AlignHCenter
            visible: !parent.reading
            name: "person.circle.fill"
            size: 48
            color: view.palette.placeholderText
        }
        Label {
            objectName: "emptyTitle"
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            font.pixelSize: 18
            font.bold: true
            wrapMode: Text.Wrap
            text: parent.reading ? qsTr("Reading your address book…")
                                 : view.searching && view.service.count > 0 ? qsTr("No contacts match") : qsTr("No contacts yet")
        }
        Label {
            Layout.fillWidth: true
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: view.palette.placeholderText
            visible: !parent.reading
            text: view.searching && view.service.count > 0
                  ? qsTr("Nobody in your address book has “%1” in their name.").arg(view.viewModel.searchTextForContacts)
                  : qsTr("Telverra reads vCard folders: the address books in khard's configuration, "
                         + "~/.local/share/contacts and ~/.local/share/kpeoplevcard (where KDE Connect keeps a phone's "
                         + "contacts). Put .vcf files in a folder there, or start Telverra with --contacts DIR to read another folder.")
        }
    }

    Menu {
        id: contactMenu
        objectName: "contactMenu"
        ActionMenuItem {
            text: qsTr("Add to favorites")
            icon.source: "image://symbols/star.fill?color=" + String(view.palette.windowText).substring(1)
            onTriggered: view.viewModel.addContactToFavoritesById(view.menuContact)
        }
    }

    ActionDialog {
        id: permissionAlert
        objectName: "contactsPermissionAlert"
        anchors.centerIn: parent
        modal: true
        title: qsTr("Contacts Permission Denied")
        standardButtons: Dialog.Ok
        width: Math.min(460, view.width * 0.8)
        Label {
            objectName: "contactsPermissionAlertText"
            text: view.viewModel.contactsPermissionErrorDescription
            wrapMode: Text.Wrap
            width: permissionAlert.availableWidth
        }
        onAccepted: screen.permissionAlertDismissed()
        onRejected: screen.permissionAlertDismissed()
    }
}
