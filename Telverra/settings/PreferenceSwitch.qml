import QtQuick
import Telverra

// A switch bound to one preference: it shows the stored value and writes it the moment it is flipped.
ActionSwitch {
    id: toggle

    required property var preferences
    required property string key

    objectName: key
    checked: preferences.boolValue(key)
    onToggled: preferences.setBoolValue(key, checked)
}
