import QtQuick
import QtQuick.Controls
import Telverra

// A scroll bar that a screen reader's Increase and Decrease move by a step (Qt's own offers the actions and ignores
// them). In a scroll view, set its place as the style does: parent, x, y and height.
ScrollBar {
    id: control
    Accessible.name: orientation === Qt.Vertical ? qsTr("Scroll up and down") : qsTr("Scroll sideways")
    function accessibleIncreaseAction() { control.increase() }
    function accessibleDecreaseAction() { control.decrease() }
}
