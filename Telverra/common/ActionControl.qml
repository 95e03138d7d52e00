import QtQuick
import QtQuick.Controls
import Telverra

// A button drawn our own way (a chip, an index letter, a round icon): a screen reader's Press clicks it, and the
// keyboard focus is drawn as a ring around it.
AbstractButton {
    id: control
    function accessiblePressAction() { AccessibleActivation.press(control) }
    function accessibleToggleAction() { AccessibleActivation.press(control) }

    Accessible.role: Accessible.Button

    Rectangle {
        z: 1
        anchors.fill: parent
        anchors.margins: -2
        radius: control.background && control.background.radius !== undefined ? control.background.radius + 2 : 4
        color: "transparent"
        border.width: 2
        border.color: control.palette.highlight
        visible: control.visualFocus
    }
}
