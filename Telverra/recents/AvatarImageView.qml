import QtQuick
import Telverra

// The avatar of a history row: the contact's avatar when the record's contact is in the address book, otherwise the
// symbol of the call's kind on a coloured circle (green for the personal kinds, blue for meetings and the rest).
Item {
    id: avatar

    property string callType
    property string rowKind
    property string symbolName
    property bool hasContact: false
    property string initials
    property string photo
    property real size: 38

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    ContactAvatarImage {
        anchors.fill: parent
        visible: avatar.hasContact
        size: avatar.size
        initials: avatar.initials
        photo: avatar.photo
    }
    Rectangle {
        anchors.fill: parent
        visible: !avatar.hasContact
        radius: width / 2
        color: avatar.rowKind === "personal" ? "#2e9d4f" : "#1f6fd6"
        SymbolIcon {
            anchors.centerIn: parent
            name: avatar.symbolName
            size: avatar.size * 0.52
            color: "white"
        }
    }
}
