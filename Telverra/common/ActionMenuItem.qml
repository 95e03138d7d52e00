import QtQuick
import QtQuick.Controls
import Telverra

// A menu entry that a screen reader's Press triggers as a click does.
MenuItem {
    id: control
    Accessible.name: text
    Accessible.onPressAction: AccessibleActivation.press(control)
}
