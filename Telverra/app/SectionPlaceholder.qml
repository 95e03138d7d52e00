import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// A section whose screen is not part of this version yet.
Item {
    id: placeholder

    property string title
    property string symbol
    property string text

    ColumnLayout {
        anchors.centerIn: parent
        spacing: 12
        SymbolIcon { Layout.alignment: Qt.AlignHCenter; name: placeholder.symbol; size: 56; color: placeholder.palette.placeholderText }
        Label { Layout.alignment: Qt.AlignHCenter; text: placeholder.title; font.pixelSize: 24; font.bold: true }
        Label { Layout.alignment: Qt.AlignHCenter; text: placeholder.text; color: placeholder.palette.placeholderText }
    }
}
