import QtQuick
import QtQuick.Controls
import Telverra

// A contact's avatar: the card's picture in a ringed circle, else the initials (or a building, for a company) on a
// grey circle ringed in a colour picked at random.
Item {
    id: avatar

    property string initials
    property string photo
    property real size: 38
    property var avatarRingColor: ["red", "blue", "pink", "green", "orange", "purple", "yellow"]
    // Picked when the avatar is drawn, so it may differ from one drawing to the next.
    readonly property color ringColor: avatarRingColor.length > 0
                                       ? avatarRingColor[Math.floor(Math.random() * avatarRingColor.length)] : "yellow"
    readonly property bool showsPhoto: photo.length > 0 && picture.status === Image.Ready

    implicitWidth: size
    implicitHeight: size
    Accessible.ignored: true

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: avatar.showsPhoto ? "transparent" : "gray"
        border.width: 2
        border.color: avatar.showsPhoto ? avatar.palette.mid : avatar.ringColor
    }
    Image {
        id: picture
        anchors.fill: parent
        anchors.margins: 2
        visible: avatar.showsPhoto
        source: avatar.photo
        sourceSize.width: Math.ceil(avatar.size * 2)
        sourceSize.height: Math.ceil(avatar.size * 2)
        asynchronous: true
        smooth: true
    }
    Label {
        anchors.centerIn: parent
        visible: !avatar.showsPhoto && avatar.initials.length > 0
        text: avatar.initials
        color: "black"
        font.pixelSize: Math.round(avatar.size * 0.4)
        font.weight: Font.DemiBold
    }
    SymbolIcon {
        anchors.centerIn: parent
        visible: !avatar.showsPhoto && avatar.initials.length === 0
        name: "building.2.fill"
        size: 14
        color: "black"
    }
}
