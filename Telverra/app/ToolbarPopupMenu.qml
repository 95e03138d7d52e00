import QtQuick
import QtQuick.Controls
import Telverra

// The toolbar's pop-up menu: a new Google Meet, or a call to whatever is on the clipboard.
ActionToolButton {
    id: button

    required property var viewModel

    objectName: "toolbarPopupMenu"
    Accessible.name: qsTr("Launch")
    contentItem: SymbolIcon { name: "video.bubble.left.fill"; size: 22 }
    onClicked: menu.open()

    Menu {
        id: menu
        objectName: "launchMenu"
        y: button.height
        ActionMenuItem {
            text: qsTr("New Google Meet")
            icon.source: "image://symbols/video.bubble.left.fill?color=" + String(button.palette.windowText).substring(1)
            onTriggered: button.viewModel.startNewGoogleMeet()
        }
        ActionMenuItem {
            text: qsTr("Call from clipboard")
            icon.source: "image://symbols/doc.on.clipboard?color=" + String(button.palette.windowText).substring(1)
            onTriggered: button.viewModel.makeCallFromClipboard()
        }
    }
}
