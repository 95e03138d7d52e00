import QtQuick
import QtTest
import Telverra

// The history: search, count, the context actions and the double click.
Item {
    id: stage
    width: 700
    height: 600

TestCase {
    id: testCase
    name: "RecentsView"
    when: windowShown

    property var view: null

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
    function init() {
        viewModel.searchTextForRecents = ""
        view = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/recents/RecentsView.qml"), stage,
                                     { viewModel: viewModel, width: stage.width, height: stage.height })
        verify(view)
    }
    function row(i) {
        tryVerify(() => findChild(view, "recent-" + i) !== null)
        return findChild(view, "recent-" + i)
    }

    function test_searchFiltersAndCounts() {
        const count = findChild(view, "recentsCount")
        const all = viewModel.recentCallsModel.count
        tryCompare(count, "text", all + " entries")
        const search = findChild(view, "recentsSearch")
        search.text = "922"
        tryVerify(() => viewModel.recentCallsModel.count > 0 && viewModel.recentCallsModel.count < all)
        compare(count.text, viewModel.recentCallsModel.count + " entries")
        compare(viewModel.searchTextForRecents, "922")
        search.text = "ZZZ"
        tryCompare(count, "text", "0 entries")
        search.text = ""
        tryCompare(count, "text", all + " entries")
        compare(row(0).relativeDate, "today")
    }

    function test_contextActions() {
        findChild(view, "recentsSearch").text = "5551234567" // the Zoom link
        tryCompare(viewModel.recentCallsModel, "count", 1)
        const first = row(0)
        const value = first.destinationValue
        const favorites = testSupport.favoriteTelcoCount()
        const before = viewModel.recentCallsModel.count
        mouseClick(first, 20, 20, Qt.RightButton)
        const menu = findChild(first, "recentMenu")
        tryCompare(menu, "opened", true)
        compare([0, 1, 3].map(i => menu.itemAt(i).text), ["Add to favorites", "Copy Value to clipboard", "Remove from history"])
        menu.itemAt(0).triggered()
        compare(testSupport.favoriteTelcoCount(), favorites + 1)
        menu.itemAt(1).triggered()
        compare(testSupport.clipboard(), value)
        menu.itemAt(3).triggered()
        tryCompare(viewModel.recentCallsModel, "count", before - 1)
        menu.close()
    }

    function test_doubleClickCallsAgain() {
        // Calls made in the same instant may sort either way, so pick the row by its number.
        findChild(view, "recentsSearch").text = "922"
        tryCompare(viewModel.recentCallsModel, "count", 1)
        testSupport.clearLaunches()
        const before = viewModel.recentCallsModel.count
        const target = row(0)
        const value = target.destinationValue
        compare(value, "922 600")
        mouseDoubleClickSequence(target, 40, 20)
        tryVerify(() => testSupport.launches().length === 1)
        compare(testSupport.launches()[0], "tel:" + value.replace(/ /g, ""))
        tryCompare(viewModel.recentCallsModel, "count", before + 1)
    }
}
}
