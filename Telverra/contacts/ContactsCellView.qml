pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// One contact: avatar, name, its first number and address, and the quick actions the settings enable. A quick action
// calls at once when the contact has one number (or address) for it, and shows the chips to choose from when it has
// several; a contact with none for it has the button dimmed. Activating the row (double click, Enter, Space) calls its
// first number.
ActionDelegate {
    id: cell

    required property var viewModel
    required property var contactsView
    required property int index
    required property string identifier
    required property string name
    required property string initials
    required property string photo
    required property var phoneTags
    required property var emailTags
    required property var quickActions

    property bool showQuickActions: false
    property string numberValue
    property string keyValue
    property string selectedKeyId
    property string selectedTypeOfContactDetails: "phoneNumbers"
    property string selectedQuickAction: "telephone"
    readonly property var chips: selectedTypeOfContactDetails === "eMailAccounts" ? emailTags : phoneTags

    readonly property var actionSymbols: ({ "telephone": "phone.circle.fill", "messages": "message.circle.fill",
                                            "mail": "envelope.circle.fill", "facetime": "video.circle.fill",
                                            "facetime-audio": "waveform.circle.fill" })
    readonly property var actionNames: ({ "telephone": qsTr("Call"), "messages": qsTr("Message"), "mail": qsTr("Mail"),
                                          "facetime": qsTr("FaceTime"), "facetime-audio": qsTr("FaceTime audio") })

    objectName: "contact-" + index
    width: ListView.view ? ListView.view.width : implicitWidth
    highlighted: ListView.isCurrentItem && ListView.view.activeFocus
    padding: 6
    leftPadding: 10
    rightPadding: 10
    Accessible.name: name

    function tagsFor(action) { return action === "mail" ? emailTags : phoneTags }

    // A quick action: straight to the one value there is, or a choice among several.
    function startAction(action) {
        const tags = tagsFor(action)
        selectedQuickAction = action
        selectedTypeOfContactDetails = action === "mail" ? "eMailAccounts" : "phoneNumbers"
        if (tags.length === 1)
            choose(tags[0])
        else if (tags.length > 1)
            showQuickActions = true
    }
    // The chosen value goes through the dialer's validation into its display, where the launch takes it from.
    function choose(tag) {
        selectedKeyId = tag.id
        numberValue = tag.number
        keyValue = tag.text
        viewModel.validateDialerDisplay(numberValue)
        viewModel.sendContactActionTo(identifier, keyValue, selectedQuickAction)
        showQuickActions = false
    }
    function collapse() {
        showQuickActions = false
        selectedKeyId = ""
    }

    Component.onCompleted: contactsView.screen.rowAppeared(identifier)
    ListView.onReused: { collapse(); contactsView.screen.rowAppeared(identifier) }
    ListView.onPooled: collapse()

    onActivated: startAction("telephone")
    onMenuRequested: contactsView.openContactMenu(identifier, name)
    Keys.onEscapePressed: event => { if (cell.showQuickActions) cell.collapse(); else event.accepted = false }

    contentItem: ColumnLayout {
        spacing: 6

        RowLayout {
            spacing: 10
            ContactAvatarImage {
                initials: cell.initials
                photo: cell.photo
                size: 36
            }
            ColumnLayout {
                Layout.fillWidth: true
                spacing: 2
                Label {
                    Layout.fillWidth: true
                    text: cell.name
                    font.pixelSize: 15
                    font.weight: Font.DemiBold
                    elide: Text.ElideRight
                    Accessible.ignored: true // the row's name
                }
                Row {
                    spacing: 6
                    visible: cell.phoneTags.length > 0 || cell.emailTags.length > 0
                    KeyTagView { visible: cell.phoneTags.length > 0; key: cell.phoneTags.length > 0 ? cell.phoneTags[0] : ({ text: "", number: "" }) }
                    KeyTagView { visible: cell.emailTags.length > 0; key: cell.emailTags.length > 0 ? cell.emailTags[0] : ({ text: "", number: "" }) }
                }
            }
            Row {
                spacing: 2
                Repeater {
                    model: cell.quickActions
                    delegate: ActionControl {
                        id: action
                        required property string modelData
                        readonly property bool available: cell.tagsFor(modelData).length > 0
                        objectName: "quickAction-" + modelData
                        width: 30
                        height: 30
                        enabled: available
                        // Tab reaches the buttons of the current row only, not those of every row in view.
                        focusPolicy: cell.ListView.isCurrentItem ? Qt.TabFocus : Qt.NoFocus
                        Keys.onReturnPressed: clicked()
                        Keys.onEnterPressed: clicked()
                        Accessible.role: Accessible.Button
                        //: An action on a contact, then the contact's name: "Call Ana Pérez"
                        Accessible.name: qsTr("%1 %2").arg(cell.actionNames[modelData]).arg(cell.name)
                        Accessible.description: available ? "" : ToolTip.text
                        ToolTip.visible: hovered
                        ToolTip.delay: 600
                        ToolTip.text: available ? cell.actionNames[modelData]
                                                : (modelData === "mail" ? qsTr("No e-mail address") : qsTr("No phone number"))
                        contentItem: SymbolIcon {
                            name: cell.actionSymbols[action.modelData]
                            size: 20
                            color: cell.highlighted ? cell.palette.highlightedText
                                   : action.modelData === "facetime-audio" ? "#2e9d4f" : cell.palette.highlight
                            opacity: action.available ? (action.pressed ? 0.6 : 1) : 0.3
                        }
                        background: Rectangle {
                            radius: width / 2
                            color: action.hovered && action.available ? cell.palette.midlight : "transparent"
                            border.width: action.visualFocus ? 2 : 0
                            border.color: cell.palette.highlight
                        }
                        onClicked: cell.startAction(modelData)
                    }
                }
            }
        }

        // The choice, when the contact has several numbers or addresses for the action.
        Flow {
            objectName: "chips"
            Layout.fillWidth: true
            Layout.leftMargin: 46
            visible: cell.showQuickActions
            spacing: 6
            Repeater {
                model: cell.showQuickActions ? cell.chips : []
                delegate: SelectableKeyTagView {
                    required property var modelData
                    key: modelData
                    selectedKeyId: cell.selectedKeyId
                    onClicked: cell.choose(modelData)
                }
            }
            ActionButton {
                objectName: "cancelChoice"
                text: qsTr("Cancel")
                flat: true
                Accessible.name: qsTr("Cancel")
                onClicked: cell.collapse()
            }
        }
    }
}
