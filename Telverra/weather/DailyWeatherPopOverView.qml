pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The daily forecast: the place, one framed row per day (today's set apart) and the provider's attribution.
Popup {
    id: popover

    required property var viewModel
    // Built when the popover opens.
    property var vm: null

    objectName: "dailyWeatherPopOver"
    padding: 10
    width: 340
    onAboutToShow: vm = viewModel.dailyWeatherViewModel()
    background: Rectangle {
        color: popover.palette.window
        border.color: popover.palette.mid
        radius: 6
    }

    contentItem: ColumnLayout {
        spacing: 6
        Label {
            objectName: "placeTitle"
            Layout.fillWidth: true
            elide: Text.ElideRight
            Layout.margins: 5
            text: popover.vm ? popover.vm.title : ""
            font.pixelSize: 20
            font.bold: true
        }
        Repeater {
            model: popover.vm ? popover.vm.rows : []
            delegate: Rectangle {
                id: dayRow
                required property var modelData
                objectName: "day-" + modelData.dayLabel
                Layout.fillWidth: true
                implicitHeight: rowLayout.implicitHeight + 16
                radius: 5
                color: modelData.isToday ? Qt.alpha(popover.palette.highlight, 0.18) : "transparent"
                border.color: modelData.isToday ? popover.palette.highlight : popover.palette.windowText
                border.width: modelData.isToday ? 2 : 1
                RowLayout {
                    id: rowLayout
                    anchors.fill: parent
                    anchors.margins: 8
                    Label {
                        text: dayRow.modelData.dayLabel
                        font.pixelSize: 22
                        font.bold: dayRow.modelData.isToday
                        Layout.fillWidth: true
                    }
                    ColumnLayout {
                        spacing: 0
                        Label { text: dayRow.modelData.max; font.pixelSize: 15; font.bold: true }
                        Label { text: dayRow.modelData.min; font.pixelSize: 13; color: popover.palette.placeholderText }
                    }
                    SymbolIcon {
                        Layout.margins: 4
                        name: dayRow.modelData.icon
                        size: 28
                    }
                }
            }
        }
        // The attribution, a link to the provider as a whole: a click or a screen reader's Press opens the site.
        ActionControl {
            id: attribution
            objectName: "attributionLink"
            readonly property string markdown: popover.vm ? popover.vm.attribution : ""
            readonly property string link: (markdown.match(/\]\(([^)]*)\)/) || ["", ""])[1]
            Layout.fillWidth: true
            Layout.topMargin: 4
            enabled: link.length > 0
            focusPolicy: Qt.TabFocus
            Accessible.role: Accessible.Link
            Accessible.name: markdown.replace(/\[([^\]]*)\]\([^)]*\)/g, "$1")
            onClicked: Qt.openUrlExternally(link)
            // The Markdown link drawn as a styled link, so that it takes the palette's link colour (a Markdown
            // document keeps a fixed dark blue, unreadable on a dark popover).
            contentItem: Label {
                objectName: "attribution"
                text: attribution.markdown.replace(/\[([^\]]*)\]\(([^)]*)\)/g, '<a href="$2">$1</a>')
                textFormat: Text.StyledText
                linkColor: popover.palette.link
                wrapMode: Text.Wrap
                font.pixelSize: 11
                color: popover.palette.placeholderText
                Accessible.ignored: true // the link's name says it
            }
        }
    }
}
