import QtQuick
import QtTest
import Telverra

// The history: search, count, the context actions and the double click.
ScreenTestCase {
    name: "RecentsView"
    width: 700
    screen: "recents/RecentsView.qml"

    function initTestCase() {
        const before = viewModel.recentCallsModel.count
        // Three calls: two numbers sharing "600" and a Zoom link.
        for (const number of ["600 111 222", "922 600"]) {
            viewModel.validateDialerDisplay(number)
            viewModel.makeCallFromDialer()
        }
        viewModel.openTelcoURL("https://zoom.us/j/5551234567")
        tryCompare(viewModel.recentCallsModel, "count", before + 3)
    }
    // The one row a search leaves (calls made in the same instant may sort either way).
    function only(search) {
        findChild(view, "recentsSearch").text = search
        tryCompare(viewModel.recentCallsModel, "count", 1)
        tryVerify(() => findChild(view, "recent-0") !== null)
        return findChild(view, "recent-0")
    }

    function test_searchCounts() {
        const count = findChild(view, "recentsCount")
        const all = viewModel.recentCallsModel.count
        tryCompare(count, "text", all + " entries")
        findChild(view, "recentsSearch").text = "922"
        tryVerify(() => viewModel.recentCallsModel.count > 0 && viewModel.recentCallsModel.count < all)
        compare(count.text, viewModel.recentCallsModel.count + " entries")
        compare(viewModel.searchTextForRecents, "922")
        compare(findChild(view, "recent-0").relativeDate, "today")
        findChild(view, "recentsSearch").text = "ZZZ"
        tryCompare(count, "text", "0 entries")
        findChild(view, "recentsSearch").text = ""
        tryCompare(count, "text", all + " entries")
    }

    function test_contextActions() {
        const link = only("5551234567")
        const favorites = testSupport.stored("SELECT id FROM FavoriteTelcoEntity").length
        mouseClick(link, 20, 20, Qt.RightButton)
        const menu = findChild(link, "recentMenu")
        tryCompare(menu, "opened", true)
        compare([0, 1, 3].map(i => menu.itemAt(i).text), ["Add to favorites", "Copy Value to clipboard", "Remove from history"])
        menu.itemAt(0).triggered()
        compare(testSupport.stored("SELECT id FROM FavoriteTelcoEntity").length, favorites + 1)
        menu.itemAt(1).triggered()
        compare(testSupport.clipboard(), link.destinationValue)
        menu.itemAt(3).triggered()
        tryCompare(viewModel.recentCallsModel, "count", 0)
        menu.close()
    }

    function test_doubleClickCallsAgain() {
        const target = only("922")
        compare(target.destinationValue, "922 600")
        mouseDoubleClickSequence(target, 40, 20)
        tryVerify(() => testSupport.launches().length === 1)
        compare(testSupport.launches(), ["tel:922600"])
        tryCompare(viewModel.recentCallsModel, "count", 2)
    }
}
