import QtQuick
import QtQuick.Controls
import Telverra

// A list row or a sidebar entry. Activating it (a double click, Enter, Space, or a screen reader's Press) is one
// signal, `activated`; right click, the Menu key and Shift+F10 ask for its context menu. The row with the keyboard
// focus is framed.
// In a list, the list is the one stop of the Tab key and the arrows move through its rows; a click makes a row the
// current one. A row that is not on screen (scrolled out of the view, or waiting in the list's pool of rows to be
// used again) is hidden, so that it is neither drawn nor offered to a screen reader; the current row stays, so that
// the keyboard focus never falls out of the list.
ItemDelegate {
    id: row

    signal activated()
    signal menuRequested()
    // Whether the row is shown with the keyboard focus.
    readonly property bool keyboardFocus: visualFocus || (ListView.isCurrentItem && ListView.view !== null && ListView.view.activeFocus)
    property bool pooled: false
    readonly property bool inView: ListView.view === null
                                   || (y + height > ListView.view.contentY && y < ListView.view.contentY + ListView.view.height)

    visible: !pooled && (inView || ListView.isCurrentItem)
    focusPolicy: ListView.view !== null ? Qt.NoFocus : Qt.StrongFocus
    ListView.onPooled: pooled = true
    ListView.onReused: pooled = false

    Accessible.role: Accessible.ListItem
    Accessible.onPressAction: AccessibleActivation.press(row)

    onClicked: {
        const view = ListView.view
        if (view !== null) {
            view.currentIndex = view.indexAt(x + width / 2, y + height / 2)
            view.forceActiveFocus(Qt.MouseFocusReason)
        }
    }
    onDoubleClicked: activated()
    Keys.onSpacePressed: activated()
    Keys.onReturnPressed: activated()
    Keys.onEnterPressed: activated()
    Keys.onMenuPressed: menuRequested()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_F10 && (event.modifiers & Qt.ShiftModifier)) {
            row.menuRequested()
            event.accepted = true
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: row.menuRequested()
    }

    Rectangle {
        z: 1
        anchors.fill: parent
        color: "transparent"
        border.width: 2
        border.color: row.palette.highlight
        visible: row.keyboardFocus
    }
}
