import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// Empties the stored history or favourites, each after a confirmation; the screens show the change at once.
ColumnLayout {
    id: reset

    required property var viewModel
    property bool showAlert: false
    objectName: "resetView"
    property alias alert: alert
    // "resetCallsHistory", "resetFavoriteTelcos", "resetFavoriteContacts", or "" for none.
    property string alertType: ""

    readonly property var alerts: ({
        "resetCallsHistory": qsTr("Reset recent calls history"),
        "resetFavoriteTelcos": qsTr("Reset favorite telcos"),
        "resetFavoriteContacts": qsTr("Reset favorite contacts")
    })

    function ask(type) {
        alertType = type
        showAlert = true
    }
    function confirm() {
        if (alertType === "resetCallsHistory") {
            viewModel.recentCallsDataService.deleteAllRecentCalls()
            viewModel.recentCallsDataService.fetchRecentCalls()
        } else if (alertType === "resetFavoriteTelcos") {
            viewModel.favoritesDataService.deleteAllFavoriteTelcos()
            viewModel.favoritesDataService.fetchFavoriteTelcos()
        } else if (alertType === "resetFavoriteContacts") {
            viewModel.favoritesDataService.deleteAllFavoriteContacts()
            viewModel.favoritesDataService.fetchFavoriteContacts()
        }
    }

    spacing: 4

    component Heading: Label {
        font.bold: true
        font.pixelSize: 15
        Accessible.role: Accessible.Heading
    }

    Label {
        text: qsTr("**Warning !!!**")
        textFormat: Text.MarkdownText
        Accessible.name: text.replace(/\*\*/g, "")
        font.pixelSize: 22
        Layout.topMargin: 10
        Layout.bottomMargin: 5
    }
    Label {
        Layout.fillWidth: true
        Layout.bottomMargin: 20
        wrapMode: Text.Wrap
        text: qsTr("You will delete all stored information on the database. Proceed with caution.")
    }
    Heading { text: qsTr("Recent Calls History:") }
    ActionButton {
        objectName: "resetCallsHistory"
        text: qsTr("Reset call history")
        Accessible.name: text
        Layout.bottomMargin: 10
        onClicked: reset.ask("resetCallsHistory")
    }
    Heading { text: qsTr("Favorites:") }
    ActionButton {
        objectName: "resetFavoriteTelcos"
        text: qsTr("Reset favorite telcos")
        Accessible.name: text
        Layout.bottomMargin: 10
        onClicked: reset.ask("resetFavoriteTelcos")
    }
    ActionButton {
        objectName: "resetFavoriteContacts"
        text: qsTr("Reset favorite contacts")
        Accessible.name: text
        onClicked: reset.ask("resetFavoriteContacts")
    }
    Item { Layout.fillHeight: true }

    ActionDialog {
        id: alert
        objectName: "resetAlert"
        readonly property bool typed: reset.alertType.length > 0
        parent: Overlay.overlay
        anchors.centerIn: parent
        modal: true
        visible: reset.showAlert
        title: typed ? reset.alerts[reset.alertType] : qsTr("ERROR")
        width: Math.min(420, parent ? parent.width - 40 : 420)
        onClosed: reset.showAlert = false

        Label {
            width: alert.availableWidth
            visible: alert.typed
            text: qsTr("Are you sure you want to delete all items in the database ?")
            wrapMode: Text.Wrap
        }
        footer: DialogButtonBox {
            // Declared in the order they stand, which is the order Tab takes.
            ActionButton {
                objectName: "confirmReset"
                visible: alert.typed
                text: qsTr("Reset")
                Accessible.name: text
                palette.buttonText: "#d32f2f" // destructive
                DialogButtonBox.buttonRole: DialogButtonBox.DestructiveRole
                onClicked: {
                    reset.confirm()
                    alert.close()
                }
            }
            ActionButton {
                objectName: "dismissReset"
                text: qsTr("Dismiss")
                Accessible.name: text
                DialogButtonBox.buttonRole: DialogButtonBox.RejectRole
            }
        }
    }
}
