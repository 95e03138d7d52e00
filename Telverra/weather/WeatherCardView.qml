import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The condition symbol and the temperature; click (or Space) for the daily forecast, double click for the large card.
ActionControl {
    id: card

    required property var viewModel
    property bool showDailyWeatherPopOver: false
    property bool isLarge: false
    readonly property var weather: viewModel.weatherInfo

    objectName: "weatherCard"
    padding: 2
    leftPadding: 6
    rightPadding: 6
    focusPolicy: Qt.TabFocus
    Accessible.name: weather ? qsTr("Weather: %1").arg(temperature.text) : qsTr("No weather yet")
    Accessible.description: qsTr("Shows the daily forecast")

    onClicked: showDailyWeatherPopOver = !showDailyWeatherPopOver
    onDoubleClicked: isLarge = !isLarge

    contentItem: RowLayout {
        id: row
        spacing: 6
        SymbolIcon {
            objectName: "weatherIcon"
            name: card.weather ? card.weather.icon : "location.fill"
            size: card.isLarge ? 48 : 16
            color: card.weather ? card.palette.windowText : card.palette.placeholderText
        }
        Label {
            id: temperature
            objectName: "weatherTemp"
            text: (card.weather ? card.weather.temp : "–") + "º"
            font.bold: true
            font.pixelSize: card.isLarge ? 60 : 14
            color: card.weather ? card.palette.windowText : card.palette.placeholderText
            Accessible.ignored: true // the card's name says it
        }
    }

    DailyWeatherPopOverView {
        id: popover
        y: card.height + 4
        x: card.width - width
        viewModel: card.viewModel
        // Also without weather: it names the place and lets the user choose a city.
        visible: card.showDailyWeatherPopOver
        onClosed: card.showDailyWeatherPopOver = false
    }
}
