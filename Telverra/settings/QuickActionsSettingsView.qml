import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// Which quick-action buttons the contacts show, and which application on this computer opens each kind (read again
// each time the tab is shown: applications come and go). A kind with none keeps its button, which explains itself.
ColumnLayout {
    id: quickActions

    required property var preferences
    property var callsManager: null

    spacing: 4
    onVisibleChanged: if (visible) handlers.refresh()

    QuickActionHandlers {
        id: handlers
        callsManager: quickActions.callsManager
    }

    component Heading: Label {
        font.bold: true
        font.pixelSize: 15
        Layout.bottomMargin: 5
        Accessible.role: Accessible.Heading
    }

    // Under a switch: the application that opens its kind, or, in the warning colour, that there is none.
    component HandlerLine: Label {
        required property string kind
        required property Switch toggle
        readonly property var handler: handlers.handlers[kind]

        objectName: "handler-" + kind
        visible: handler !== undefined
        Layout.fillWidth: true
        Layout.leftMargin: toggle.leftPadding + toggle.indicator.width + toggle.spacing
        Layout.topMargin: -6
        wrapMode: Text.Wrap
        font.pixelSize: 12
        color: handler && handler.state === "none" ? "#e08a00" : quickActions.palette.placeholderText
        text: !handler ? ""
            : handler.state === "application" ? qsTr("Opens in %1").arg(handler.name)
            : handler.state === "none" ? qsTr("No application installed")
            : qsTr("The desktop asks which application to use")
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    Label {
        Layout.fillWidth: true
        Layout.bottomMargin: 10
        wrapMode: Text.Wrap
        text: qsTr("Customize your at your liking all the quick action buttons you want to have available on contacts UI for faster access to communicastions.")
    }
    Heading { text: qsTr("Default Actions:") }
    PreferenceSwitch { id: phoneCalls; preferences: quickActions.preferences; key: "quickActionIsSetForPhoneCalls"; text: qsTr("iPhone calls (default)") }
    HandlerLine { kind: "telephone"; toggle: phoneCalls }
    PreferenceSwitch { id: emails; preferences: quickActions.preferences; key: "quickActionIsSetForEmails"; text: qsTr("Mail") }
    HandlerLine { kind: "mail"; toggle: emails; Layout.bottomMargin: 10 }
    Heading { text: qsTr("Calls:") }
    PreferenceSwitch { id: facetime; preferences: quickActions.preferences; key: "quickActionIsSetForFacetimeCalls"; text: qsTr("Facetime") }
    HandlerLine { kind: "facetime"; toggle: facetime }
    PreferenceSwitch { id: facetimeAudio; preferences: quickActions.preferences; key: "quickActionIsSetForFacetimeAudioCalls"; text: qsTr("Facetime Audio") }
    HandlerLine { kind: "facetime-audio"; toggle: facetimeAudio; Layout.bottomMargin: 10 }
    Heading { text: qsTr("Messages:") }
    PreferenceSwitch { id: texts; preferences: quickActions.preferences; key: "quickActionIsSetForText"; text: qsTr("iMessage") }
    HandlerLine { kind: "messages"; toggle: texts }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForSkype"; text: qsTr("Skype"); Layout.bottomMargin: 10 }
    Item { Layout.fillHeight: true }
}
