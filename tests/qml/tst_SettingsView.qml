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
        return settings
    }
    function find(name) { return findChild(settings.contentItem, name) }
    function showTab(label) {
        const tab = findChild(settings.header, "tab-" + label)
        mouseClick(tab)
        tryCompare(tab, "checked", true)
    }

    function test_aFreshInstallation() {
        // The same services, over a preference store nothing was written to.
        const fresh = Qt.createQmlObject(`import QtQml
            QtObject {
                property var preferences: testSupport.freshPreferences()
                property var weatherInfoService: viewModel.weatherInfoService
                property var corelocationDataService: viewModel.corelocationDataService
                property var recentCallsDataService: viewModel.recentCallsDataService
                property var favoritesDataService: viewModel.favoritesDataService
            }`, testCase)
        open(fresh)
        const expected = { useChromeAsDefaultBrowser: true, copyNumberURLToClipBoard: true, updateWeatherInfoEveryHour: true,
                           fixedQuoteOnStartup: false, quickActionIsSetForPhoneCalls: true, quickActionIsSetForEmails: true,
                           quickActionIsSetForText: true, quickActionIsSetForFacetimeCalls: false,
                           quickActionIsSetForFacetimeAudioCalls: false, quickActionIsSetForSkype: false }
        for (const key of Object.keys(expected))
            compare(find(key).checked, expected[key], key)
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
        compare(data.effect(), !before)
        compare(toggle.checked, !before)
        mouseClick(toggle)
        compare(data.effect(), before)
    }

    function test_quickActionsTellWhichApplicationOpensEachKind() {
        testSupport.setMissingSchemes(["tel"])
        open()
        showTab("Quick Actions")
        const phone = find("handler-telephone")
        tryCompare(phone, "visible", true)
        compare(phone.text, "No application installed")
        compare(phone.Accessible.name, phone.text)
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

    function test_resetAsksFirst() {
        open()
        showTab("Reset")
        testSupport.storeFavoriteTelco("Room", "https://meet.jit.si/Room")
        const telcos = viewModel.favoriteTelcosModel.count
        verify(telcos > 0)
        mouseClick(find("resetFavoriteTelcos"))
        const alert = find("resetView").alert
        tryCompare(alert, "opened", true)
        compare(alert.title, "Reset favorite telcos")
        mouseClick(findChild(alert.footer, "dismissReset"))
        tryCompare(alert, "visible", false)
        compare(viewModel.favoriteTelcosModel.count, telcos) // nothing deleted

        viewModel.validateDialerDisplay("600 123 456")
        viewModel.makeCallFromDialer()
        tryVerify(() => viewModel.recentCallsModel.count > 0)
        mouseClick(find("resetCallsHistory"))
        tryCompare(alert, "opened", true)
        compare(alert.title, "Reset recent calls history")
        mouseClick(findChild(alert.footer, "confirmReset"))
        compare(viewModel.recentCallsModel.count, 0) // at once
    }

    function test_anAlertWithNoTypeSaysError() {
        open()
        showTab("Reset")
        const reset = find("resetView")
        reset.alertType = ""
        reset.showAlert = true
        const alert = find("resetView").alert
        tryCompare(alert, "opened", true)
        compare(alert.title, "ERROR")
        verify(!findChild(alert.footer, "confirmReset").visible)
        alert.close()
    }
}
