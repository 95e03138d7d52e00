import QtQuick
import QtTest
import Telverra

// The contacts screen over the real view model and vCard folder: García, Smith (two numbers), -Dash and the company 3M.
Item {
    id: stage
    width: 800
    height: 600

    TestCase {
        name: "ContactsView"
        when: windowShown

        property var view: null

        function initTestCase() {
            tryCompare(viewModel.contactsDataService, "count", 4)
        }
        function init() {
            viewModel.searchTextForContacts = ""
            view = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/contacts/AllContactsView.qml"), stage,
                                         { viewModel: viewModel, width: stage.width, height: stage.height })
            verify(view)
            testSupport.clearLaunches()
        }
        function find(name) { return findChild(view, name) }
        function children(item) {
            const all = []
            for (let i = 0; i < item.children.length; ++i) all.push(item.children[i])
            return all
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
            for (let i = 0; i < list().count; ++i) {
                if (list().itemAtIndex(i).name === name)
                    return list().itemAtIndex(i)
            }
        }

        // 3M has no name to file but a digit: "#"; -Dash has a section of its own and is listed under "#" too.
        function test_sectionsAndSearch_data() {
            return [
                { tag: "all", search: "", count: 4, shown: ["[#]", "3M", "Dee -Dash", "[-]", "Dee -Dash", "[G]", "Ana García", "[S]", "Bob Smith"] },
                { tag: "a match", search: "smi", count: 1, shown: ["[S]", "Bob Smith"] },
                { tag: "no match", search: "zzz", count: 0, shown: [] }
            ]
        }
        function test_sectionsAndSearch(data) {
            const search = find("contactsSearch")
            search.text = data.search
            tryCompare(find("contactsCount"), "text", data.count + " contacts", 3000)
            compare(onScreen(), data.shown)
            compare(find("contactsEmptyState").visible, data.count === 0)
            if (data.count === 0)
                compare(find("emptyTitle").text, "No contacts match")
            search.text = ""
            tryCompare(find("contactsCount"), "text", "4 contacts")
            // The alphabet index hides on request.
            verify(find("alphabetIndex").visible)
            mouseClick(find("alphabetToggle"))
            verify(!find("alphabetIndex").visible)
        }

        function test_quickActionCallsTheOneNumberAndRecordsTheContact() {
            const ana = row("Ana García")
            mouseClick(findChild(ana, "quickAction-telephone"))
            tryVerify(() => testSupport.launches().length === 1, 3000)
            compare(testSupport.launches(), ["tel:+34600111222"])
            // The history names the contact and shows its avatar.
            const recents = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/recents/RecentsView.qml"),
                                                  stage, { viewModel: viewModel, width: 600, height: 400 })
            tryVerify(() => findChild(recents, "recent-0") !== null)
            const newest = findChild(recents, "recent-0")
            compare(newest.title, "Ana García")
            compare(newest.subtitle, "mobile +34 600 111 222")
            verify(newest.hasContact)
            compare(newest.contactInitials, "AG")
        }

        function test_severalNumbersOfferAChoice() {
            const bob = row("Bob Smith")
            mouseClick(findChild(bob, "quickAction-messages"))
            const chips = findChild(bob, "chips")
            verify(chips.visible)
            compare(testSupport.launches(), [])
            const choices = children(chips).filter(item => item.key !== undefined)
            compare(choices.map(chip => chip.key.text + " " + chip.key.number), ["home +1 555 0101", "work +1 555 0100"])
            waitForRendering(view)
            mouseClick(choices[0])
            tryVerify(() => testSupport.launches().length === 1, 3000)
            compare(testSupport.launches(), ["sms:+15550101"])
            verify(!chips.visible)
            // A contact without an address has its mail button dimmed.
            verify(!findChild(bob, "quickAction-mail").enabled)
        }

        function test_addToFavoritesTwiceGivesOneRecord() {
            const before = testSupport.favoriteContactCount("bob")
            for (let i = 0; i < 2; ++i) {
                mouseClick(row("Bob Smith"), 20, 20, Qt.RightButton)
                const menu = find("contactMenu")
                tryCompare(menu, "opened", true)
                compare(menu.itemAt(0).text, "Add to favorites")
                menu.itemAt(0).triggered()
                menu.close()
            }
            compare(testSupport.favoriteContactCount("bob"), before === 0 ? 1 : before)
        }

        function test_preferencesHideButtons() {
            const keys = ["quickActionIsSetForPhoneCalls", "quickActionIsSetForText", "quickActionIsSetForEmails"]
            for (const key of keys) testSupport.setPreference(key, false)
            const ana = row("Ana García")
            tryVerify(() => findChild(ana, "quickAction-telephone") === null)
            compare(findChild(ana, "quickAction-mail"), null)
            testSupport.setPreference("quickActionIsSetForFacetimeCalls", true)
            tryVerify(() => findChild(ana, "quickAction-facetime") !== null)
            testSupport.setPreference("quickActionIsSetForFacetimeCalls", false)
            for (const key of keys) testSupport.setPreference(key, true)
            tryVerify(() => findChild(ana, "quickAction-telephone") !== null)
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
            const published = Qt.createQmlObject(`import QtQml
                QtObject {
                    property var contactsModel: viewModel.contactsModel
                    property var contactsDataService: viewModel.contactsDataService
                    property string searchTextForContacts: ""
                    property string contactsPermissionErrorDescription: "💥! Permission error when attempting to access contact store. Please go to settings and allow the app to access contacts."
                }`, stage)
            const alerted = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/contacts/AllContactsView.qml"),
                                                  stage, { viewModel: published, width: 600, height: 400 })
            const alert = findChild(alerted, "contactsPermissionAlert")
            tryCompare(alert, "visible", true)
            compare(alert.title, "Contacts Permission Denied")
            compare(findChild(alerted, "contactsPermissionAlertText").text, published.contactsPermissionErrorDescription)
            testSupport.captureTrace()
            alert.accept()
            tryCompare(alert, "visible", false)
            compare(testSupport.traceLines(), ["- dismiss and send message to allow access in preferences"])
            published.destroy()
        }
    }
}
