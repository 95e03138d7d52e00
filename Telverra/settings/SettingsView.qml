import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The settings window: General, Quick Actions, Reset and About. Every switch writes its preference the moment it is
// flipped.
ApplicationWindow {
    id: settings

    required property var viewModel
    readonly property var preferences: viewModel.preferences

    objectName: "settingsWindow"
    title: qsTr("Telverra Settings")
    width: 600
    height: 500
    minimumWidth: 480
    minimumHeight: 420
    color: palette.window

    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: settings.close()
    }

    header: TabBar {
        id: tabs
        objectName: "settingsTabs"
        Repeater {
            model: [
                { name: "General", label: qsTr("General"), symbol: "gear" },
                { name: "Quick Actions", label: qsTr("Quick Actions"), symbol: "ellipsis.circle" },
                { name: "Reset", label: qsTr("Reset"), symbol: "xmark.circle.fill" },
                { name: "About", label: qsTr("About"), symbol: "info.circle.fill" }
            ]
            delegate: ActionTabButton {
                required property var modelData
                objectName: "tab-" + modelData.name
                text: modelData.label
                Accessible.name: modelData.label
                icon.source: "image://symbols/" + modelData.symbol + "?color=" + String(settings.palette.windowText).substring(1)
                icon.width: 18
                icon.height: 18
                display: AbstractButton.TextUnderIcon
                // The open tab is marked in both palettes (Fusion's dark tabs differ too little on their own).
                Rectangle {
                    anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
                    height: 3
                    color: settings.palette.highlight
                    visible: parent.checked
                }
            }
        }
    }

    StackLayout {
        anchors.fill: parent
        anchors.margins: 20
        currentIndex: tabs.currentIndex
        GeneralSettingsView { viewModel: settings.viewModel }
        QuickActionsSettingsView { preferences: settings.preferences; callsManager: settings.viewModel.callsManager ?? null }
        ResetSettingsView { viewModel: settings.viewModel }
        AboutSettingsView {}
    }
}
