import QtQuick
import QtTest
import Telverra

// The keypad: its order, the long press on "0", the keyboard and the warnings.
Item {
    id: stage
    width: 400
    height: 600

TestCase {
    id: testCase
    name: "DialerView"
    when: windowShown

    property var view: null

    function init() {
        viewModel.clearDialer()
        view = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/dialer/DialerView.qml"), stage,
                                     { viewModel: viewModel, width: stage.width, height: stage.height })
        verify(view)
    }
    function key(k) { return findChild(view, "key-" + k) }

    function test_keypadOrderIsLikeAComputerKeypad() {
        const keypad = findChild(view, "keypad")
        const labels = []
        for (let i = 0; i < keypad.children.length; ++i) {
            if (keypad.children[i].key !== undefined) labels.push(keypad.children[i].key)
        }
        compare(labels, ["7", "8", "9", "4", "5", "6", "1", "2", "3", "*", "0", "#"])
        // 7 sits above 4, which sits above 1.
        verify(key("7").y < key("4").y && key("4").y < key("1").y)
        compare(key("5").width, 60)
    }

    function test_keysAndLongPressOnZero() {
        mouseClick(key("6"))
        mouseClick(key("0"))
        compare(viewModel.dialer.display, "60")
        mousePress(key("0"))
        tryCompare(key("0"), "held", true) // however long the machine takes to get there
        mouseRelease(key("0"))
        compare(viewModel.dialer.display, "60+")
        mouseClick(key("0"))
        compare(viewModel.dialer.display, "60+0")
    }

    function test_warningOnlyWhileTheDisplayHoldsText() {
        const warning = findChild(view, "invalidNumberWarning")
        mouseClick(key("*"))
        compare(viewModel.dialer.isInvalidNumber, true)
        compare(warning.opacity, 1)
        mouseClick(findChild(view, "deleteButton"))
        compare(viewModel.dialer.display, "")
        compare(viewModel.dialer.isInvalidNumber, true)
        compare(warning.opacity, 0)
    }

    function test_typingBackspaceAndEnter() {
        const display = findChild(view, "display")
        display.forceActiveFocus()
        keyClick("9"); keyClick("1"); keyClick("x")
        compare(viewModel.dialer.display, "91x")
        compare(viewModel.dialer.isInvalidNumber, true)
        keyClick(Qt.Key_Backspace)
        compare(viewModel.dialer.display, "91")
        compare(viewModel.dialer.isInvalidNumber, false)
        testSupport.clearLaunches()
        keyClick(Qt.Key_Return)
        tryVerify(() => testSupport.launches().length === 1)
        compare(testSupport.launches()[0], "tel:91")
        compare(viewModel.dialer.display, "") // cleared after the launch
    }
}
}
