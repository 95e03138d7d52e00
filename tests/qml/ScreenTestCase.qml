import QtQuick
import QtTest

// A test case of one screen of the program, made anew for each test over the shared view model, drawn inside the
// case's own area, from the same state each time: no search, an empty dialer, nothing launched yet.
TestCase {
    id: screenCase
    when: windowShown
    visible: true
    width: 800
    height: 600

    property string screen // its file below qrc:/qt/qml/Telverra
    property var view: null

    function init() {
        viewModel.searchTextForContacts = ""
        viewModel.searchTextForRecents = ""
        viewModel.clearDialer()
        testSupport.clearLaunches()
        view = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/" + screen), screenCase,
                                     { viewModel: viewModel, width: width, height: height })
        verify(view)
    }
    function find(name) { return findChild(view, name) }
}
