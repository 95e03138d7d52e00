import QtQuick
import QtQuick.Controls

// A switch bound to one preference: it shows the stored value and writes it the moment it is flipped.
Switch {
    id: toggle

    required property var preferences
    required property string key

    objectName: key
    checked: preferences.boolValue(key)
    Accessible.name: text
    onToggled: preferences.setBoolValue(key, checked)
}
