import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// The condition symbol and the temperature; click for the daily forecast, double click for the large card.
Item {
    id: card

    required property var viewModel
    property bool showDailyWeatherPopOver: false
    property bool isLarge: false
    readonly property var weather: viewModel.weatherInfo

    objectName: "weatherCard"
    implicitWidth: row.implicitWidth + 12
    implicitHeight: row.implicitHeight + 4
    Accessible.name: weather ? weather.temp + " degrees" : "No weather yet"

    RowLayout {
        id: row
        anchors.centerIn: parent
        spacing: 6
        SymbolIcon {
            objectName: "weatherIcon"
            name: card.weather ? card.weather.icon : "location.fill"
            size: card.isLarge ? 48 : 16
            color: card.weather ? card.palette.windowText : card.palette.placeholderText
        }
        Label {
            objectName: "weatherTemp"
            text: (card.weather ? card.weather.temp : "–") + "º"
            font.bold: true
            font.pixelSize: card.isLarge ? 60 : 14
            color: card.weather ? card.palette.windowText : card.palette.placeholderText
        }
    }

    TapHandler {
        onTapped: card.showDailyWeatherPopOver = !card.showDailyWeatherPopOver
        onDoubleTapped: card.isLarge = !card.isLarge
    }

    DailyWeatherPopOverView {
        id: popover
        y: card.height + 4
        x: card.width - width
        viewModel: card.viewModel
        visible: card.showDailyWeatherPopOver && card.weather !== undefined && card.weather !== null
        onClosed: card.showDailyWeatherPopOver = false
    }
}
