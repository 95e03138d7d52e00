import QtQuick
import QtQuick.Controls
import Telverra

// A switch that a screen reader's Toggle (or Press) flips as a click does.
Switch {
    id: control
    Accessible.name: text
    function accessibleToggleAction() { AccessibleActivation.press(control) }
    function accessiblePressAction() { AccessibleActivation.press(control) }
}
