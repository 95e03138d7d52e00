import QtQuick
import QtQuick.Controls
import Telverra

// The window's menu bar: a screen reader's Press on a menu's title opens it as a click does.
MenuBar {
    delegate: MenuBarItem {
        id: entry
        Accessible.name: text.replace("&", "")
        Accessible.onPressAction: AccessibleActivation.press(entry)
    }
}
