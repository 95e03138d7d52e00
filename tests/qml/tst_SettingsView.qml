import QtQuick
import QtTest
import Telverra

// The settings window over the real view model: a fresh installation's values, every switch writing its key, the
// resets, the weather timer and launch at login.
TestCase {
    id: testCase
    name: "SettingsView"
    when: windowShown

    property var settings: null

    function open(model) {
        settings = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/settings/SettingsView.qml"), null,
                                         { viewModel: model || viewModel, visible: true })
        verify(settings)
        settings.requestActivate()
        tryVerify(() => settings.active)
    }
    function find(name) { return findChild(settings.contentItem, name) }
    function showTab(label) {
        const tab = findChild(settings.header, "tab-" + label)
        mouseClick(tab)
        tryCompare(tab, "checked", true)
    }

    function test_aFreshInstallation() {
        // The same services, over a preference store nothing was written to.
        open(createTemporaryQmlObject(`import QtQml
            QtObject {
                property var preferences: testSupport.freshPreferences()
                property string weatherPlaceTitle: ""
                property string weatherPlaceNote: ""
                property bool weatherPlaceIsGuess: false
                property bool weatherPlaceIsChosen: false
                property var weatherStatus: viewModel.weatherStatus
                property var recentCallsDataService: viewModel.recentCallsDataService
                property var favoritesDataService: viewModel.favoritesDataService
            }`, testCase))
        const on = ["useChromeAsDefaultBrowser", "copyNumberURLToClipBoard", "updateWeatherInfoEveryHour",
                    "quickActionIsSetForPhoneCalls", "quickActionIsSetForEmails", "quickActionIsSetForText"]
        for (const key of on.concat(["fixedQuoteOnStartup", "quickActionIsSetForFacetimeCalls",
                                     "quickActionIsSetForFacetimeAudioCalls", "quickActionIsSetForSkype"]))
            compare(find(key).checked, on.includes(key), key)
    }

    // Each switch writes its key, and those with more to do do it: the weather timer runs, the autostart entry is there.
    function test_everySwitchWritesItsKey_data() {
        return ["useChromeAsDefaultBrowser", "copyNumberURLToClipBoard", "fixedQuoteOnStartup",
                "quickActionIsSetForPhoneCalls", "quickActionIsSetForText", "quickActionIsSetForEmails",
                "quickActionIsSetForFacetimeCalls", "quickActionIsSetForFacetimeAudioCalls", "quickActionIsSetForSkype"]
            .map(key => ({ tag: key, key: key, effect: () => testSupport.preference(key) }))
            .concat([{ tag: "weather timer", key: "updateWeatherInfoEveryHour", effect: () => testSupport.weatherTimerActive() },
                     { tag: "launch at login", key: "launchAtLogin", effect: () => testSupport.launchesAtLogin() }])
    }
    function test_everySwitchWritesItsKey(data) {
        open()
        const before = data.effect()
        if (data.key.startsWith("quickAction"))
            showTab("Quick Actions")
        const toggle = find(data.key)
        tryCompare(toggle, "visible", true)
        compare(toggle.checked, before)
        mouseClick(toggle)
        compare([data.effect(), toggle.checked], [!before, !before])
        mouseClick(toggle)
        compare(data.effect(), before)
    }

    function test_quickActionsTellWhichApplicationOpensEachKind() {
        testSupport.setMissingSchemes(["tel"])
        open()
        showTab("Quick Actions")
        const phone = find("handler-telephone")
        tryCompare(phone, "visible", true)
        compare([phone.text, phone.Accessible.name], ["No application installed", "No application installed"])
        verify(Qt.colorEqual(phone.color, "#e08a00"))
        const messages = find("handler-messages")
        compare(messages.text, "Opens in Recorder")
        verify(!Qt.colorEqual(messages.color, "#e08a00"))
        // Read again each time the tab is shown: an application installed meanwhile is found.
        testSupport.setMissingSchemes([])
        showTab("General")
        showTab("Quick Actions")
        tryCompare(phone, "text", "Opens in Recorder")
    }

    function test_chooseACityThenUseTheLocationAgain() {
        open()
        const search = find("settingsCitySearch")
        const input = findChild(search, "citySearch")
        input.forceActiveFocus()
        input.text = "cadiz" // as typed
        tryVerify(() => search.results.count > 1, 5000)
        const second = search.results.city(1) // two Cadiz: the second one in the list
        testSupport.sendKey(settings, Qt.Key_Down, 0)
        testSupport.sendKey(settings, Qt.Key_Return, 0)
        tryCompare(viewModel, "weatherPlaceIsChosen", true)
        compare(viewModel.weatherPlaceTitle, second.name + ", " + second.country)
        compare(viewModel.cityName, "Cadiz")
        compare(find("weatherPlace").text, viewModel.weatherPlaceTitle)
        compare(find("weatherPlaceNote").text, "Chosen by you")
        compare(input.text, "")

        const useLocation = find("useMyLocation")
        verify(useLocation.visible)
        mouseClick(useLocation)
        tryCompare(viewModel, "weatherPlaceIsChosen", false)
        tryCompare(viewModel, "cityName", "La Laguna")
        verify(!useLocation.visible)
    }

    // Each reset asks first: dismissed, nothing is deleted; confirmed, all of it at once. An alert of no type only says so.
    function test_resetAsksFirst_data() {
        return [
            { tag: "links, dismissed", ask: "resetFavoriteTelcos", title: "Reset favorite telcos", answer: "dismissReset",
              model: "favoriteTelcosModel", left: count => count },
            { tag: "history, confirmed", ask: "resetCallsHistory", title: "Reset recent calls history",
              answer: "confirmReset", model: "recentCallsModel", left: count => 0 },
            { tag: "no type", ask: "", title: "ERROR" }
        ]
    }
    function test_resetAsksFirst(data) {
        testSupport.storeFavoriteTelco("Room", "https://meet.jit.si/Room")
        viewModel.validateDialerDisplay("600 123 456")
        viewModel.makeCallFromDialer()
        tryVerify(() => viewModel.recentCallsModel.count > 0 && viewModel.favoriteTelcosModel.count > 0)
        open()
        showTab("Reset")
        const reset = find("resetView")
        if (data.ask) {
            mouseClick(find(data.ask))
        } else {
            reset.alertType = ""
            reset.showAlert = true
        }
        const alert = reset.alert
        tryCompare(alert, "opened", true)
        compare(alert.title, data.title)
        compare(findChild(alert.footer, "confirmReset").visible, data.ask !== "")
        if (!data.answer)
            return alert.close()
        const before = viewModel[data.model].count
        mouseClick(findChild(alert.footer, data.answer))
        compare(viewModel[data.model].count, data.left(before)) // at once
        tryCompare(alert, "visible", false)
    }
}
