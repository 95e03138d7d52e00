import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// How meetings open, the clipboard, the weather, and what happens at login and at start.
ScrollView {
    id: general

    required property var viewModel
    readonly property var preferences: viewModel.preferences

    contentWidth: availableWidth
    ScrollBar.horizontal.policy: ScrollBar.AlwaysOff // nothing to scroll sideways
    ScrollBar.vertical: ActionScrollBar {
        parent: general
        x: general.mirrored ? 0 : general.width - width
        y: general.topPadding
        height: general.availableHeight
    }

    component Heading: Label {
        font.bold: true
        font.pixelSize: 15
        Accessible.role: Accessible.Heading
    }

    ColumnLayout {
        width: parent.width
        spacing: 4

        Heading { text: qsTr("Tools Options:") }
        PreferenceSwitch {
            preferences: general.preferences
            key: "useChromeAsDefaultBrowser"
            text: qsTr("Use Chrome as default browser")
        }
        PreferenceSwitch {
            preferences: general.preferences
            key: "copyNumberURLToClipBoard"
            text: qsTr("Copy called numbers and urls to Clipboard")
        }
        PreferenceSwitch {
            preferences: general.preferences
            key: "updateWeatherInfoEveryHour"
            text: qsTr("Update weather information every hour?")
            Layout.bottomMargin: 10
            // Acts at once: the position asked again and the hourly timer started, or the timer cancelled.
            onToggled: {
                if (checked && preferences.boolValue(key))
                    general.viewModel.updateWeatherInfo()
                else if (!checked)
                    general.viewModel.cancelWeatherTimer()
            }
        }
        Label {
            text: qsTr("Place for the weather:")
        }
        RowLayout {
            Layout.fillWidth: true
            Label {
                objectName: "weatherPlace"
                text: general.viewModel.weatherPlaceTitle.length > 0 ? general.viewModel.weatherPlaceTitle
                                                                      : qsTr("None yet")
                font.bold: true
            }
            Label {
                objectName: "weatherPlaceNote"
                Layout.fillWidth: true
                text: general.viewModel.weatherPlaceNote
                font.italic: general.viewModel.weatherPlaceIsGuess
                color: general.palette.placeholderText
                elide: Text.ElideRight
            }
            ActionButton {
                objectName: "useMyLocation"
                text: qsTr("Use my location")
                visible: general.viewModel.weatherPlaceIsChosen
                Accessible.description: qsTr("Forget the chosen city and use the desktop's location service again.")
                onClicked: general.viewModel.clearWeatherCity()
            }
        }
        CitySearchField {
            objectName: "settingsCitySearch"
            Layout.fillWidth: true
            onChosen: city => general.viewModel.chooseWeatherCity(city)
        }
        Label {
            objectName: "weatherStatus"
            Layout.fillWidth: true
            visible: text.length > 0
            text: general.viewModel.weatherStatus ? general.viewModel.weatherStatus.text : ""
            wrapMode: Text.Wrap
            color: general.palette.placeholderText
            font.pixelSize: 12
            Layout.bottomMargin: 10
        }

        Heading { text: qsTr("Launch Options"); Layout.topMargin: 10 }
        LaunchAtLogin { id: launchAtLogin }
        ActionSwitch {
            objectName: "launchAtLogin"
            text: qsTr("Launch at login")
            checked: launchAtLogin.isEnabled
            onToggled: {
                launchAtLogin.isEnabled = checked
                checked = Qt.binding(() => launchAtLogin.isEnabled) // what is read back
            }
        }
        PreferenceSwitch {
            preferences: general.preferences
            key: "fixedQuoteOnStartup"
            text: qsTr("Fix welcome screen with quotes on startup")
        }
    }
}
