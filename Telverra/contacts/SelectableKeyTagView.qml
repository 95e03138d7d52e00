import QtQuick
import QtQuick.Controls
import Telverra

// A contact's detail as a chip to choose: its label above its value. The chosen chip stands out in the accent colour.
ActionControl {
    id: chip

    required property var key
    property string selectedKeyId

    readonly property bool selected: selectedKeyId === key.id
    readonly property bool dark: palette.window.hslLightness < 0.5

    implicitWidth: content.implicitWidth + 16
    implicitHeight: content.implicitHeight + 8
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: qsTranslate("ContactLabels", key.text) + " " + key.number

    background: Rectangle {
        radius: 8
        color: chip.selected ? (chip.dark ? "#2f7de1" : "#1f6fd6")
                             : chip.hovered || chip.visualFocus ? chip.palette.midlight : "transparent"
        border.width: 1
        border.color: chip.selected ? "transparent" : (chip.dark ? "#44a866" : "#2e8b57")
    }
    contentItem: Column {
        id: content
        spacing: 0
        Label {
            text: qsTranslate("ContactLabels", chip.key.text)
            font.pixelSize: 10
            font.weight: Font.Light
            color: chip.selected ? "white" : (chip.dark ? "#f2a33a" : "#c46a00")
            Accessible.ignored: true // the chip's name says both
        }
        Label {
            text: chip.key.number
            font.pixelSize: 12
            font.weight: Font.Light
            color: chip.selected ? "white" : chip.palette.windowText
            Accessible.ignored: true
        }
    }
}
