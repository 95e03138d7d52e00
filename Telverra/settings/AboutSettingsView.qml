import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// A few words about the program.
ColumnLayout {
    spacing: 12

    Label {
        Layout.fillWidth: true
        Layout.leftMargin: 10
        Layout.rightMargin: 10
        wrapMode: Text.Wrap
        textFormat: Text.MarkdownText
        // Read out without its Markdown.
        Accessible.name: text.replace(/\*\*/g, "").replace(/\s+/g, " ")
        text: qsTr("**Telverra** is free and open source software. This is why this app is now shared with the world for free.\n\n"
                   + "Do you want to help me out improving this tool ? I believe that the Mac really deserves a better experiece to launch calls and handle your communicating with people.")
    }
    Label {
        Layout.leftMargin: 10
        text: qsTr("Version %1").arg(Qt.application.version)
        color: palette.placeholderText
    }
    Item { Layout.fillHeight: true }
}
