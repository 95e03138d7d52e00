pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The sidebar: the "Tools" section with its four entries, the clock and the "Configuration" menu. The entries are
// reached with Tab and moved through with the arrows; a click, Enter or Space shows the entry's section.
Pane {
    id: sidebar

    required property var viewModel
    required property string currentSection
    signal sectionChosen(string section)
    signal settingsRequested()

    padding: 8

    function focusEntry(row) {
        if (row >= 0 && row < entries.count)
            entries.itemAt(row).forceActiveFocus(Qt.TabFocusReason)
    }
    background: Rectangle { color: sidebar.palette.alternateBase }

    ColumnLayout {
        anchors.fill: parent
        spacing: 2

        Label {
            text: qsTr("Tools")
            font.bold: true
            font.pixelSize: 12
            color: sidebar.palette.placeholderText
            Layout.leftMargin: 8
            Layout.bottomMargin: 4
        }

        Repeater {
            id: entries
            model: [
                { section: "dialer", label: qsTr("iPhone"), symbol: "menubar.dock.rectangle" },
                { section: "recents", label: qsTr("Recents"), symbol: "list.dash" },
                { section: "favorites", label: qsTr("Favorites"), symbol: "heart.fill" },
                { section: "contacts", label: qsTr("Contacts"), symbol: "person.circle.fill" }
            ]
            delegate: ActionDelegate {
                id: entry

                required property var modelData
                required property int index
                readonly property bool selected: sidebar.currentSection === modelData.section

                objectName: "sidebar-" + modelData.section
                Layout.fillWidth: true
                highlighted: selected
                text: modelData.label
                Accessible.name: modelData.label
                contentItem: RowLayout {
                    spacing: 10
                    SymbolIcon {
                        name: entry.modelData.symbol
                        size: 18
                        color: entry.selected ? sidebar.palette.highlightedText : sidebar.palette.highlight
                    }
                    Label {
                        text: entry.text
                        Layout.fillWidth: true
                        color: entry.selected ? sidebar.palette.highlightedText : sidebar.palette.windowText
                        Accessible.ignored: true // the entry's name
                    }
                }
                Accessible.selectable: true
                Accessible.selected: selected
                onClicked: sidebar.sectionChosen(modelData.section)
                onActivated: sidebar.sectionChosen(modelData.section)
                Keys.onUpPressed: sidebar.focusEntry(index - 1)
                Keys.onDownPressed: sidebar.focusEntry(index + 1)
            }
        }

        Item { Layout.fillHeight: true }

        DigitalClockView {
            Layout.fillWidth: true
            Layout.bottomMargin: 8
        }

        ActionToolButton {
            id: gear
            objectName: "configurationMenuButton"
            Accessible.name: qsTr("Configuration")
            ToolTip.visible: hovered
            ToolTip.text: qsTr("Configuration")
            contentItem: SymbolIcon { name: "gear"; size: 26 }
            onClicked: configurationMenu.open()

            Menu {
                id: configurationMenu
                objectName: "configurationMenu"
                y: -height
                ActionMenuItem {
                    text: qsTr("Configuration")
                    icon.source: "image://symbols/gear?color=" + String(sidebar.palette.windowText).substring(1)
                    onTriggered: sidebar.settingsRequested()
                }
                ActionMenuItem {
                    text: qsTr("Quit app")
                    icon.source: "image://symbols/gear?color=" + String(sidebar.palette.windowText).substring(1)
                    onTriggered: Qt.exit(0)
                }
            }
        }
    }
}
