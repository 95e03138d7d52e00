import QtQuick
import QtQuick.Controls
import Telverra

// A tab that a screen reader's Press opens as a click does.
TabButton {
    id: control
    Accessible.name: text
    Accessible.onPressAction: AccessibleActivation.press(control)
}
