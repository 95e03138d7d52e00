import QtQuick
import QtTest
import Telverra

// The keypad: its order, the long press on "0", the keyboard and the warnings.
ScreenTestCase {
    name: "DialerView"
    width: 400
    screen: "dialer/DialerView.qml"

    function key(k) { return find("key-" + k) }
    // The display, whether it is flagged invalid, and whether the warning shows.
    function state() {
        return [viewModel.dialer.display, viewModel.dialer.isInvalidNumber, findChild(view, "invalidNumberWarning").opacity]
    }

    function test_keypadOrderIsLikeAComputerKeypad() {
        const keypad = findChild(view, "keypad")
        const labels = []
        for (let i = 0; i < keypad.children.length; ++i) {
            if (keypad.children[i].key !== undefined) labels.push(keypad.children[i].key)
        }
        compare(labels, ["7", "8", "9", "4", "5", "6", "1", "2", "3", "*", "0", "#"])
        verify(key("7").y < key("4").y && key("4").y < key("1").y) // 7 sits above 4, which sits above 1
    }

    function test_keysLongPressAndWarning() {
        mouseClick(key("6"))
        mouseClick(key("0"))
        mousePress(key("0"))
        tryCompare(key("0"), "held", true) // however long the machine takes to get there
        mouseRelease(key("0"))
        mouseClick(key("0"))
        compare(viewModel.dialer.display, "60+0")
        viewModel.clearDialer()
        mouseClick(key("*"))
        compare(state(), ["*", true, 1])
        mouseClick(findChild(view, "deleteButton"))
        compare(state(), ["", true, 0]) // the warning only while the display holds text
    }

    function test_typingBackspaceAndEnter() {
        findChild(view, "display").forceActiveFocus()
        keyClick("9"); keyClick("1"); keyClick("x")
        compare(state(), ["91x", true, 1])
        keyClick(Qt.Key_Backspace)
        compare(state(), ["91", false, 0])
        keyClick(Qt.Key_Return)
        tryVerify(() => testSupport.launches().length === 1)
        compare(testSupport.launches(), ["tel:91"])
        compare(viewModel.dialer.display, "") // cleared after the launch
    }
}
