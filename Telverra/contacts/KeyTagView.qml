import QtQuick
import QtQuick.Controls

// A contact's detail shown read-only: its label and value in a small rounded tag.
Rectangle {
    id: tag

    required property var key

    implicitWidth: text.implicitWidth + 12
    implicitHeight: text.implicitHeight + 4
    radius: height / 2
    color: "transparent"
    border.width: 1
    border.color: tag.palette.mid
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTranslate("ContactLabels", tag.key.text) + " " + tag.key.number

    Label {
        id: text
        anchors.centerIn: parent
        text: qsTranslate("ContactLabels", tag.key.text) + "  " + tag.key.number
        font.pixelSize: 11
        font.weight: Font.Light
        color: tag.palette.placeholderText
        elide: Text.ElideRight
        width: Math.min(implicitWidth, 260)
        Accessible.ignored: true // the tag's own name says it once
    }
}
