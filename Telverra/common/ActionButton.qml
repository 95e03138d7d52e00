import QtQuick
import QtQuick.Controls
import Telverra

// A push button that a screen reader's Press clicks (Qt's own button offers the action and ignores it).
Button {
    id: control
    Accessible.name: text
    function accessiblePressAction() { AccessibleActivation.press(control) }
}
