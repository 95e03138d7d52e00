import QtQuick
import QtTest
import Telverra

// The contacts screen over the real view model and vCard folder: García, Smith (two numbers), -Dash and the company 3M.
ScreenTestCase {
    id: testCase
    name: "ContactsView"
    screen: "contacts/AllContactsView.qml"

    function initTestCase() {
        tryCompare(viewModel.contactsDataService, "count", 4)
    }
    function list() { return find("contactsList") }
    // The list as the view lays it out: each section's header, then its rows.
    function onScreen() {
        list().forceLayout()
        const shown = []
        for (let i = 0; i < list().count; ++i) {
            const item = list().itemAtIndex(i)
            if (i === 0 || item.ListView.previousSection !== item.ListView.section)
                shown.push("[" + item.ListView.section + "]")
            shown.push(item.name)
        }
        return shown
    }
    function row(name) {
        tryVerify(() => onScreen().indexOf(name) >= 0)
        for (let i = 0; ; ++i) {
            if (list().itemAtIndex(i).name === name) return list().itemAtIndex(i)
        }
    }

    // 3M has no name to file but a digit: "#"; -Dash has a section of its own and is listed under "#" too.
    function test_sectionsAndSearch_data() {
        return [
            { tag: "all", search: "", count: 4, shown: ["[#]", "3M", "Dee -Dash", "[-]", "Dee -Dash", "[G]", "Ana García", "[S]", "Bob Smith"] },
            { tag: "a match", search: "smi", count: 1, shown: ["[S]", "Bob Smith"] },
            { tag: "no match", search: "zzz", count: 0, shown: [], empty: "No contacts match" }
        ]
    }
    function test_sectionsAndSearch(data) {
        find("contactsSearch").text = data.search
        tryCompare(find("contactsCount"), "text", data.count + " contacts", 3000)
        compare(onScreen(), data.shown)
        compare(find("contactsEmptyState").visible ? find("emptyTitle").text : undefined, data.empty)
        find("contactsSearch").text = ""
        tryCompare(find("contactsCount"), "text", "4 contacts")
        // The alphabet index hides on request.
        verify(find("alphabetIndex").visible)
        mouseClick(find("alphabetToggle"))
        verify(!find("alphabetIndex").visible)
    }

    // One number is called at once; of several the user chooses, home before work. The history names the contact.
    function test_quickAction_data() {
        return [
            { tag: "one number", name: "Ana García", action: "telephone", choices: [], launch: "tel:+34600111222",
              recent: ["Ana García", "mobile +34 600 111 222", "AG"] },
            { tag: "two numbers", name: "Bob Smith", action: "messages", choices: ["home +1 555 0101", "work +1 555 0100"],
              launch: "sms:+15550101", recent: ["Bob Smith", "home +1 555 0101", "BS"] }
        ]
    }
    function test_quickAction(data) {
        const contact = row(data.name)
        verify(!findChild(contact, "quickAction-mail").enabled) // no e-mail address: dimmed
        mouseClick(findChild(contact, "quickAction-" + data.action))
        const chips = findChild(contact, "chips")
        const choices = []
        for (let i = 0; i < chips.children.length; ++i) {
            if (chips.children[i].key !== undefined) choices.push(chips.children[i])
        }
        compare(chips.visible ? choices.map(chip => chip.key.text + " " + chip.key.number) : [], data.choices)
        if (chips.visible) {
            compare(testSupport.launches(), [])
            waitForRendering(view)
            mouseClick(choices[0])
        }
        tryVerify(() => testSupport.launches().length === 1)
        compare(testSupport.launches(), [data.launch])
        verify(!chips.visible)
        const recents = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/recents/RecentsView.qml"),
                                              testCase, { viewModel: viewModel, width: 600, height: 400 })
        tryVerify(() => findChild(recents, "recent-0") !== null)
        const newest = findChild(recents, "recent-0")
        compare([newest.title, newest.subtitle, newest.contactInitials], data.recent)
        verify(newest.hasContact)
    }

    function test_addToFavoritesTwiceGivesOneRecord() {
        const query = "SELECT id FROM FavoriteContactEntity WHERE contactID = 'bob'"
        const before = testSupport.stored(query).length
        for (let i = 0; i < 2; ++i) {
            mouseClick(row("Bob Smith"), 20, 20, Qt.RightButton)
            const menu = find("contactMenu")
            tryCompare(menu, "opened", true)
            compare(menu.itemAt(0).text, "Add to favorites")
            menu.itemAt(0).triggered()
            menu.close()
        }
        compare(testSupport.stored(query).length, before === 0 ? 1 : before)
    }

    function test_preferencesHideButtons() {
        const keys = ["quickActionIsSetForPhoneCalls", "quickActionIsSetForText", "quickActionIsSetForEmails"]
        const ana = row("Ana García")
        const shown = action => findChild(ana, "quickAction-" + action) !== null
        for (const key of keys) testSupport.setPreference(key, false)
        tryVerify(() => !shown("telephone") && !shown("mail"))
        testSupport.setPreference("quickActionIsSetForFacetimeCalls", true)
        tryVerify(() => shown("facetime"))
        testSupport.setPreference("quickActionIsSetForFacetimeCalls", false)
        for (const key of keys) testSupport.setPreference(key, true)
        tryVerify(() => shown("telephone") && !shown("facetime"))
    }

    function test_keyboard() {
        keySequence(StandardKey.Find)
        const search = find("contactsSearch")
        verify(search.activeFocus)
        keyClick("g")
        compare(viewModel.searchTextForContacts, "g")
        keyClick(Qt.Key_Escape)
        compare(search.text, "")
        keyClick(Qt.Key_Down)
        verify(list().activeFocus)
        // Down to García, past 3M and the two rows of -Dash (what Enter does on a row is checked with every list).
        for (let i = 0; i < 3; ++i) keyClick(Qt.Key_Down)
        compare(list().currentItem.name, "Ana García")
    }

    function test_permissionAlert() {
        // The alert shows whatever error the address book published; a stand-in view model carries one.
        const published = createTemporaryQmlObject(`import QtQml
            QtObject {
                property var contactsModel: viewModel.contactsModel
                property var contactsDataService: viewModel.contactsDataService
                property string searchTextForContacts: ""
                property string contactsPermissionErrorDescription: "💥! Permission error when attempting to access contact store. Please go to settings and allow the app to access contacts."
            }`, testCase)
        const alerted = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/contacts/AllContactsView.qml"),
                                              testCase, { viewModel: published, width: 600, height: 400 })
        const alert = findChild(alerted, "contactsPermissionAlert")
        tryCompare(alert, "visible", true)
        compare(alert.title, "Contacts Permission Denied")
        compare(findChild(alerted, "contactsPermissionAlertText").text, published.contactsPermissionErrorDescription)
        testSupport.captureTrace()
        alert.accept()
        tryCompare(alert, "visible", false)
        compare(testSupport.traceLines(), ["- dismiss and send message to allow access in preferences"])
    }
}
