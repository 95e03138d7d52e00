pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The history: a search over the destinations, the count, and one row per call, newest first.
Item {
    id: recentsView

    required property var viewModel

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Layout.fillWidth: true
            spacing: 10
            TextField {
                id: search
                objectName: "recentsSearch"
                Layout.fillWidth: true
                placeholderText: qsTr("search...")
                Accessible.name: qsTr("Search the history")
                Accessible.description: placeholderText
                text: recentsView.viewModel.searchTextForRecents
                onTextChanged: if (text !== recentsView.viewModel.searchTextForRecents) recentsView.viewModel.searchTextForRecents = text
            }
            Label {
                objectName: "recentsCount"
                text: qsTr("%n entries", "", recentsView.viewModel.recentCallsModel.count)
                color: recentsView.palette.placeholderText
            }
            ActionToolButton {
                objectName: "refreshRecents"
                Accessible.name: qsTr("Reload")
                contentItem: SymbolIcon { name: "arrow.clockwise"; size: 18 }
                onClicked: recentsView.viewModel.refreshRecents()
            }
        }

        ListView {
            id: list
            objectName: "recentsList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            // One stop of the Tab key: the arrows move through the calls, Enter or Space calls again, the Menu key
            // opens the call's menu.
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.role: Accessible.List
            Accessible.name: qsTr("History")
            model: recentsView.viewModel.recentCallsModel
            ScrollBar.vertical: ActionScrollBar {}
            delegate: RecentCallItemCellView {
                width: ListView.view.width
                viewModel: recentsView.viewModel
            }
        }
    }
}
