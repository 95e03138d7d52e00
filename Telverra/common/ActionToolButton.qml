import QtQuick
import QtQuick.Controls
import Telverra

// A tool button that a screen reader's Press (and Toggle, when it is checkable) clicks.
ToolButton {
    id: control
    Accessible.name: text
    function accessiblePressAction() { AccessibleActivation.press(control) }
    function accessibleToggleAction() { AccessibleActivation.press(control) }
}
