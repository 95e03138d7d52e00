import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// Which quick-action buttons the contacts show.
ColumnLayout {
    id: quickActions

    required property var preferences

    spacing: 4

    component Heading: Label {
        font.bold: true
        font.pixelSize: 15
        Layout.bottomMargin: 5
        Accessible.role: Accessible.Heading
    }

    Label {
        Layout.fillWidth: true
        Layout.bottomMargin: 10
        wrapMode: Text.Wrap
        text: "Customize your at your liking all the quick action buttons you want to have available on contacts UI for faster access to communicastions."
    }
    Heading { text: "Default Actions:" }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForPhoneCalls"; text: "iPhone calls (default)" }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForEmails"; text: "Mail"; Layout.bottomMargin: 10 }
    Heading { text: "Calls:" }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForFacetimeCalls"; text: "Facetime" }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForFacetimeAudioCalls"; text: "Facetime Audio"; Layout.bottomMargin: 10 }
    Heading { text: "Messages:" }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForText"; text: "iMessage" }
    PreferenceSwitch { preferences: quickActions.preferences; key: "quickActionIsSetForSkype"; text: "Skype"; Layout.bottomMargin: 10 }
    Item { Layout.fillHeight: true }
}
