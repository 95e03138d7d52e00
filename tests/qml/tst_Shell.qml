import QtQuick
import QtTest
import Telverra

// The main window: the menu shortcuts, the clipboard call and the launch-error alert.
TestCase {
    name: "Shell"
    when: windowShown

    property var window: null

    function init() {
        // One view model serves every test: start each from the first screen.
        for (const flag of ["isDialerShown", "isRecentsShown", "isFavoritesShown", "isContactsShown"]) viewModel[flag] = false
        viewModel.isWelcomeShown = true
        const component = Qt.createComponent("qrc:/qt/qml/Telverra/app/Main.qml")
        window = component.createObject(null, { viewModel: viewModel })
        verify(window !== null, component.errorString())
        window.requestActivate()
        tryVerify(() => window.active && window.loaded) // its parts are built after it shows
        testSupport.clearLaunches()
    }
    function cleanup() {
        window.destroy()
        viewModel.clearDialer()
    }
    function ctrl(key, modifiers) { testSupport.sendKey(window, key, Qt.ControlModifier | (modifiers || 0)) }

    function test_sectionShortcutsWorkInAnyOrderAfterTheHandOver() {
        compare(window.currentSection, "welcome")
        viewModel.isWelcomeShown = false // the hand-over, as the welcome timer makes it
        viewModel.isDialerShown = true
        compare(window.currentSection, "dialer")
        const keys = { dialer: Qt.Key_1, recents: Qt.Key_2, favorites: Qt.Key_3, contacts: Qt.Key_4 }
        for (const section of ["recents", "dialer", "recents", "contacts", "favorites", "favorites", "dialer", "contacts"]) {
            ctrl(keys[section])
            compare(window.currentSection, section)
            // Only the shown section's flag is up, so the next command always changes something.
            for (const other of Object.keys(keys))
                compare(viewModel[window.sectionFlags[other]], other === section, other)
        }
        mouseClick(findChild(window.contentItem, "sidebar-recents"))
        compare(window.currentSection, "recents")
        verify(!viewModel.isContactsShown)
    }

    function test_favouritesAddedElsewhereAreListedWhenShown() {
        const favorites = viewModel.favoriteContactsModel
        const before = favorites.contactCount
        compare(testSupport.stored("SELECT contactID FROM FavoriteContactEntity").indexOf("dee"), -1)
        viewModel.addContactToFavoritesById("dee") // as the contacts' menu does
        ctrl(Qt.Key_3)
        tryCompare(favorites, "contactCount", before + 1)
    }

    function test_ctrlBackspaceClearsTheDisplayAndItsWarning() {
        ctrl(Qt.Key_1)
        viewModel.validateDialerDisplay("12ab")
        const warning = findChild(window.contentItem, "invalidNumberWarning")
        tryCompare(warning, "opacity", 1)
        ctrl(Qt.Key_Backspace)
        compare([viewModel.dialer.display, viewModel.dialer.isInvalidNumber, warning.opacity], ["", false, 0])
    }

    function test_ctrlShiftVCallsWhatIsOnTheClipboard_data() {
        return [
            { tag: "number", clipboard: "+34 600-123.456", launch: "tel:+34600123456" },
            { tag: "meeting", clipboard: "https://meet.google.com/abc-defg-hij", launch: "https://meet.google.com/abc-defg-hij" },
            { tag: "no kind: the alert", clipboard: "https://example.com/room",
              error: "Telco not supported: Attempt to open Telco of type: 'https://example.com/room'" }
        ]
    }
    function test_ctrlShiftVCallsWhatIsOnTheClipboard(data) {
        testSupport.setClipboard(data.clipboard)
        ctrl(Qt.Key_V, Qt.ShiftModifier)
        const alert = () => findChild(window.contentItem.parent, "errorAlert") || findChild(window, "errorAlert")
        if (data.error) {
            tryVerify(() => alert() && alert().visible)
            compare(alert().title, "Error trying to launch call")
            compare(findChild(alert().contentItem, "errorAlertText").text, data.error)
            alert().accept()
            tryCompare(alert(), "visible", false)
        } else {
            tryVerify(() => testSupport.launches().length === 1)
            compare(testSupport.launches()[0], data.launch)
            verify(!alert() || !alert().visible)
        }
    }
}
