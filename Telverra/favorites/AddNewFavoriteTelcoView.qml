import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The sheet that adds a meeting link, or edits one: a name and an address. Escape cancels, Return saves. Empty texts
// are marked but still saved, as the user asked.
ActionDialog {
    id: sheet

    required property var viewModel
    property bool isEditMode: false

    // A new link: empty texts.
    function openToAdd() {
        isEditMode = false
        nameField.text = ""
        urlField.text = ""
        nameEdited = false
        urlEdited = false
        open()
    }
    // The link the view model has selected, with its texts.
    function openToEdit(name, value) {
        isEditMode = true
        nameField.text = name
        urlField.text = value
        nameEdited = false
        urlEdited = false
        open()
    }
    // A field is marked once the user has emptied it, not before.
    property bool nameEdited: false
    property bool urlEdited: false

    objectName: "telcoEditor"
    modal: true
    focus: true
    width: Math.min(440, parent ? parent.width - 40 : 440)
    anchors.centerIn: parent
    closePolicy: Popup.CloseOnEscape
    padding: 20

    FavoriteTelcoEditor {
        id: editor
        service: sheet.viewModel.favoritesDataService
        isEditMode: sheet.isEditMode
        record: sheet.viewModel.selectedFavoriteTelco
        telcoName: nameField.text
        telcoValue: urlField.text
    }

    contentItem: ColumnLayout {
        spacing: 10
        Label {
            text: qsTr("Add a new favorite telco")
            font.pixelSize: 22
            font.bold: true
        }
        Label {
            Layout.fillWidth: true
            text: qsTr("save a telco with a name and a URL for easy access later")
            font.pixelSize: 13
            wrapMode: Text.Wrap
            color: sheet.palette.placeholderText
        }
        TextField {
            id: nameField
            objectName: "telcoName"
            Layout.fillWidth: true
            implicitHeight: 30
            placeholderText: qsTr("name")
            Accessible.name: qsTr("name")
            font.pixelSize: 15
            focus: true
            onTextEdited: sheet.nameEdited = true
            background: Rectangle {
                radius: 10
                color: sheet.palette.base
                border.width: nameField.activeFocus ? 2 : 1
                border.color: sheet.nameEdited && !editor.telcoNameIsValid ? "#e08a00"
                              : nameField.activeFocus ? sheet.palette.highlight : sheet.palette.mid
            }
            Keys.onReturnPressed: sheet.accept()
            Keys.onEnterPressed: sheet.accept()
        }
        TextField {
            id: urlField
            objectName: "telcoURL"
            Layout.fillWidth: true
            implicitHeight: 30
            placeholderText: qsTr("URL ")
            Accessible.name: qsTr("URL")
            font.pixelSize: 15
            onTextEdited: sheet.urlEdited = true
            background: Rectangle {
                radius: 10
                color: sheet.palette.base
                border.width: urlField.activeFocus ? 2 : 1
                border.color: sheet.urlEdited && !editor.telcoURLIsValid ? "#e08a00"
                              : urlField.activeFocus ? sheet.palette.highlight : sheet.palette.mid
            }
            Keys.onReturnPressed: sheet.accept()
            Keys.onEnterPressed: sheet.accept()
        }
    }

    footer: DialogButtonBox {
        // Declared in the order they stand, which is the order Tab takes.
        ActionButton {
            objectName: "addTelco"
            text: qsTr("Add Telco")
            Accessible.name: qsTr("Add Telco")
            highlighted: true
            DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole
        }
        ActionButton {
            objectName: "cancelTelco"
            text: qsTr("Cancel")
            Accessible.name: qsTr("Cancel")
            DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
        }
    }

    onAccepted: editor.save()
    // Whichever way the sheet goes, the list is read again.
    onClosed: viewModel.favoritesDataService.fetchFavoriteTelcos()
}
