pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The daily forecast: the place (and where it comes from, with a city search to choose another), the current
// conditions, one framed row per day (today's set apart) and the provider's attribution.
Popup {
    id: popover

    required property var viewModel
    // Built when the popover opens, and again when new weather arrives while it is open.
    property var vm: null

    objectName: "dailyWeatherPopOver"
    padding: 10
    width: 360
    onAboutToShow: vm = viewModel.dailyWeatherViewModel()
    onClosed: citySearch.visible = false
    background: Rectangle {
        color: popover.palette.window
        border.color: popover.palette.mid
        radius: 6
    }

    Connections {
        target: popover.viewModel
        enabled: popover.opened
        function onWeatherInfoChanged() { popover.vm = popover.viewModel.dailyWeatherViewModel() }
    }

    contentItem: ColumnLayout {
        spacing: 6
        Label {
            objectName: "placeTitle"
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            Layout.margins: 5
            Layout.bottomMargin: 0
            text: popover.viewModel.weatherPlaceTitle
            font.pixelSize: 20
            font.bold: true
        }
        RowLayout {
            Layout.leftMargin: 5
            Layout.rightMargin: 5
            Label {
                objectName: "placeNote"
                Layout.fillWidth: true
                text: popover.viewModel.weatherPlaceNote
                visible: text.length > 0
                font.italic: popover.viewModel.weatherPlaceIsGuess
                color: popover.palette.placeholderText
                wrapMode: Text.Wrap
            }
            ActionButton {
                objectName: "chooseCity"
                text: qsTr("Choose your city")
                flat: true
                visible: !citySearch.visible
                onClicked: {
                    citySearch.visible = true
                    citySearch.focusField()
                }
            }
        }
        CitySearchField {
            id: citySearch
            objectName: "popoverCitySearch"
            Layout.fillWidth: true
            Layout.leftMargin: 5
            Layout.rightMargin: 5
            visible: false
            onChosen: city => {
                visible = false
                popover.viewModel.chooseWeatherCity(city)
            }
        }
        Label {
            objectName: "noWeather"
            Layout.margins: 5
            visible: !popover.vm && !citySearch.visible
            text: qsTr("No weather yet.")
            color: popover.palette.placeholderText
        }
        GridLayout {
            objectName: "details"
            Layout.fillWidth: true
            Layout.leftMargin: 5
            Layout.rightMargin: 5
            columns: 4
            columnSpacing: 10
            rowSpacing: 2
            visible: popover.vm !== null && popover.vm.details.length > 0 && !citySearch.visible
            Repeater {
                model: popover.vm ? popover.vm.details : []
                delegate: RowLayout {
                    id: detail
                    required property var modelData
                    Layout.columnSpan: 2
                    Layout.fillWidth: true
                    Label { text: detail.modelData.label; color: popover.palette.placeholderText; font.pixelSize: 12 }
                    Label { text: detail.modelData.value; font.pixelSize: 12; Layout.fillWidth: true }
                }
            }
        }
        Repeater {
            // While a city is being chosen, its list takes the forecast's place.
            model: popover.vm && !citySearch.visible ? popover.vm.rows : []
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
            visible: popover.vm !== null && !citySearch.visible
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
