import QtQuick
import QtTest
import Telverra

// The favourites screen over the real view model and store: the counts, the link editor in both modes, opening a link,
// moving one, and removing a contact saved twice.
ScreenTestCase {
    name: "FavoritesView"
    height: 700
    screen: "favorites/FavoritesView.qml"

    // The saved links as the store file holds them, in their order.
    function stored() {
        return testSupport.stored("SELECT telcoName, telcoType, telcoValue FROM FavoriteTelcoEntity ORDER BY orderIndex, id")
    }
    function telcoRow(i) {
        tryVerify(() => find("telco-" + i) !== null)
        return find("telco-" + i)
    }
    // The context menu of a row, opened by a right click.
    function menuOf(row, name) {
        mouseClick(row, 40, 20, Qt.RightButton)
        tryCompare(find(name), "opened", true)
        return find(name)
    }
    // Adds a link through the editor, the way a user does: +, the two fields, Return (or Escape to cancel).
    function addThroughEditor(name, url, key) {
        mouseClick(find("addTelco"))
        const editor = find("telcoEditor")
        tryCompare(editor, "opened", true)
        findChild(editor.contentItem, "telcoName").text = name
        findChild(editor.contentItem, "telcoURL").text = url
        findChild(editor.contentItem, "telcoURL").forceActiveFocus()
        keyClick(key || Qt.Key_Return)
        tryCompare(editor, "visible", false)
    }

    function test_createStoresTheRecognisedKind_data() {
        return [
            { tag: "a Zoom link", name: "Standup", url: "https://zoom.us/j/5551234567", stored: "Standup|zoom|https://zoom.us/j/5551234567", kind: "Zoom" },
            { tag: "an address of no kind", name: "Wiki", url: "https://wiki.example.org", stored: "Wiki|not recognized|https://wiki.example.org", kind: "" },
            { tag: "both fields empty", name: "", url: "", stored: "|not recognized|", kind: "" },
            { tag: "cancelled", name: "Later", url: "https://zoom.us/j/2", key: Qt.Key_Escape }
        ]
    }
    function test_createStoresTheRecognisedKind(data) {
        const before = stored().length
        addThroughEditor(data.name, data.url, data.key)
        compare(stored().length, before + (data.stored ? 1 : 0))
        if (data.stored) {
            compare(stored()[before], data.stored)
            // The sheet's closing read the list again: the header counts the new row.
            tryCompare(findChild(find("telcosHeader"), "count"), "text", "total of " + (before + 1))
            compare(telcoRow(before).kind, data.kind)
        }
    }

    function test_editKeepsTheKind() {
        addThroughEditor("Review", "https://meet.google.com/abc-defg-hij")
        const menu = menuOf(telcoRow(stored().length - 1), "telcoMenu")
        compare([0, 1, 3].map(i => menu.itemAt(i).text), ["Copy Value to clipboard", "Edit favorite", "Remove from Favorites"])
        menu.itemAt(1).triggered()
        menu.close()
        const editor = find("telcoEditor")
        tryCompare(editor, "opened", true)
        const url = findChild(editor.contentItem, "telcoURL")
        compare(url.text, "https://meet.google.com/abc-defg-hij")
        url.text = "https://zoom.us/j/1"
        mouseClick(findChild(editor.footer, "addTelco"))
        tryCompare(editor, "visible", false)
        compare(stored()[stored().length - 1], "Review|meet|https://zoom.us/j/1") // the kind stays "meet"
    }

    function test_doubleClickOpensTheLinkAndRecordsIt() {
        addThroughEditor("Jitsi", "https://meet.jit.si/TelverraRoom")
        const calls = viewModel.recentCallsModel.count
        mouseDoubleClickSequence(telcoRow(stored().length - 1), 60, 20)
        tryVerify(() => testSupport.launches().length === 1)
        compare(testSupport.launches(), ["https://meet.jit.si/TelverraRoom"])
        tryCompare(viewModel.recentCallsModel, "count", calls + 1)
    }

    function test_aMoveIsKept() {
        while (stored().length < 2)
            addThroughEditor("Link " + stored().length, "https://meet.jit.si/Room")
        const before = stored()
        const first = telcoRow(0)
        first.forceActiveFocus()
        keyClick(Qt.Key_Down, Qt.AltModifier)
        const moved = [before[1], before[0]].concat(before.slice(2))
        // Read from the file: the order survives a restart.
        tryVerify(() => JSON.stringify(stored()) === JSON.stringify(moved))
        compare(telcoRow(1).name, first.name)
        // Dragged back by its handle.
        const handle = findChild(telcoRow(1), "dragHandle")
        mousePress(handle)
        mouseMove(handle, handle.width / 2, -telcoRow(0).height)
        mouseRelease(handle, handle.width / 2, -telcoRow(0).height)
        tryVerify(() => stored()[0] === before[0])
    }

    function test_removingAContactSavedTwiceRemovesBoth() {
        const query = "SELECT id FROM FavoriteContactEntity WHERE contactID = 'ana'"
        testSupport.storeFavoriteContact("ana")
        testSupport.storeFavoriteContact("ana")
        compare(testSupport.stored(query).length, 2)
        const list = find("favoriteContacts")
        // The rows of a contact, as the list shows them.
        function rows(identifier) {
            list.forceLayout()
            const found = []
            for (let i = 0; i < list.count; ++i) {
                const item = list.itemAtIndex(i)
                if (item && item.identifier === identifier) found.push(item)
            }
            return found
        }
        tryCompare(rows("ana"), "length", 2)
        waitForRendering(view) // the page laid out again for the longer list
        menuOf(rows("ana")[0], "favoriteContactMenu").itemAt(0).triggered()
        compare(testSupport.stored(query).length, 0)
        tryCompare(rows("ana"), "length", 0)
    }
}
