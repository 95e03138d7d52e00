import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Telverra

// No "ComponentBehavior: Bound" here: Qt 6.4's Loader refuses to create a bound component, and the window's parts are
// built by Loaders.
// The main window: the sidebar of sections beside the selected screen, the toolbar with the weather card, the menu
// commands and the launch-error alert. The window shows at once and its parts are built in the frames that follow
// (asynchronous Loaders), so that it appears as fast as an empty one; each section is built when first shown.
ApplicationWindow {
    id: window

    required property var viewModel
    // Dark colours for desktops that do not tell their colour scheme (TELVERRA_COLOR_SCHEME=dark).
    property bool darkScheme: false
    Component.onCompleted: if (darkScheme) {
        palette.window = "#2b2b2e"; palette.windowText = "#f0f0f0"; palette.base = "#1e1e20"
        palette.alternateBase = "#333337"; palette.text = "#f0f0f0"; palette.button = "#3a3a3e"
        palette.buttonText = "#f0f0f0"; palette.highlight = "#2f7de1"; palette.highlightedText = "#ffffff"
        palette.placeholderText = "#a0a0a6"; palette.mid = "#55555a"; palette.light = "#4a4a50"
        palette.dark = "#18181a"; palette.midlight = "#444448"; palette.shadow = "#000000"
        palette.link = "#6cb4ff"; palette.toolTipBase = "#3a3a3e"; palette.toolTipText = "#f0f0f0"
    }
    // The section shown: the one whose flag was raised last. Showing a section lowers the flag of the one it
    // replaces, as a navigation does, so that the next command that raises a flag always changes something.
    property string currentSection: "welcome"
    // The sections shown at least once: each is built when first shown and then kept, with its scroll position.
    property var builtSections: ["welcome"]
    readonly property var sectionFlags: ({ welcome: "isWelcomeShown", dialer: "isDialerShown", recents: "isRecentsShown",
                                          favorites: "isFavoritesShown", contacts: "isContactsShown" })

    // Whether every part of the window is built.
    readonly property bool loaded: menuLoader.status === Loader.Ready && headerLoader.status === Loader.Ready
                                   && contentLoader.status === Loader.Ready
    property bool sidebarShown: true

    function openWeatherPopover() { headerLoader.item.weatherCard.showDailyWeatherPopOver = true }
    function closeWeatherPopover() { headerLoader.item.weatherCard.showDailyWeatherPopOver = false }
    // The favourites' link editor, on the favourites screen.
    function openLinkEditor() {
        viewModel.isFavoritesShown = true
        contentLoader.item.favorites.item.openLinkEditor()
    }
    // The settings window, made when first asked for; asked again, it comes to the front.
    function openSettings() {
        settingsLoader.active = true
        const settings = settingsLoader.item
        settings.show()
        settings.raise()
        settings.requestActivate()
    }
    function showSection(section) {
        if (section === currentSection)
            return
        const previous = currentSection
        currentSection = section
        if (builtSections.indexOf(section) < 0)
            builtSections = builtSections.concat([section])
        viewModel[sectionFlags[previous]] = false
    }
    function chooseSection(section) {
        if (section === currentSection)
            return
        viewModel[sectionFlags[section]] = true
    }

    width: 1000
    height: 680
    minimumWidth: 720
    minimumHeight: 520
    visible: true
    title: "Telverra"

    Connections {
        target: window.viewModel
        function onIsWelcomeShownChanged() { if (window.viewModel.isWelcomeShown) window.showSection("welcome") }
        function onIsDialerShownChanged() { if (window.viewModel.isDialerShown) window.showSection("dialer") }
        function onIsRecentsShownChanged() { if (window.viewModel.isRecentsShown) window.showSection("recents") }
        // The favourites are read again each time they are shown: the contacts and the history add to them.
        function onIsFavoritesShownChanged() {
            if (!window.viewModel.isFavoritesShown)
                return
            window.viewModel.favoritesDataService.fetchFavoriteContacts()
            window.viewModel.favoritesDataService.fetchFavoriteTelcos()
            window.showSection("favorites")
        }
        function onIsContactsShownChanged() { if (window.viewModel.isContactsShown) window.showSection("contacts") }
        function onCallManagerErrorPublished(text) {
            errorAlert.active = true
            errorAlert.item.open()
        }
    }

    menuBar: Loader {
        id: menuLoader
        asynchronous: true
        sourceComponent: ActionMenuBar {
        Menu {
            objectName: "viewMenu"
            title: qsTr("&View")
            delegate: ActionMenuItem {}
            Action { text: qsTr("Toggle sidebar"); shortcut: "Ctrl+0"; onTriggered: window.sidebarShown = !window.sidebarShown }
            Action { text: qsTr("Update weather info"); shortcut: "Ctrl+Shift+W"; onTriggered: window.viewModel.updateWeatherInfo() }
            MenuSeparator {}
            Action { text: qsTr("iPhone"); shortcut: "Ctrl+1"; onTriggered: window.viewModel.isDialerShown = true }
            Action { text: qsTr("Recents"); shortcut: "Ctrl+2"; onTriggered: window.viewModel.isRecentsShown = true }
            Action { text: qsTr("Favorites"); shortcut: "Ctrl+3"; onTriggered: window.viewModel.isFavoritesShown = true }
            Action { text: qsTr("Contacts"); shortcut: "Ctrl+4"; onTriggered: window.viewModel.isContactsShown = true }
        }
        Menu {
            objectName: "callMenu"
            title: qsTr("&Call")
            delegate: ActionMenuItem {}
            Action { text: qsTr("Make call from dialpad"); shortcut: "Ctrl+Return"; onTriggered: window.viewModel.makeCallFromDialer() }
            Action { text: qsTr("Clear display"); shortcut: "Ctrl+Backspace"; onTriggered: window.viewModel.clearDialer() }
            MenuSeparator {}
            Action { text: qsTr("Make call from clipboard"); shortcut: "Ctrl+Shift+V"; onTriggered: window.viewModel.makeCallFromClipboard() }
            Action { text: qsTr("Create new Google Meet call"); shortcut: "Ctrl+Shift+G"; onTriggered: window.viewModel.startNewGoogleMeet() }
        }
        }
    }

    header: Loader {
        id: headerLoader
        asynchronous: true
        sourceComponent: ToolBar {
        property alias weatherCard: weatherCard
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 6
            anchors.rightMargin: 6
            ActionToolButton {
                objectName: "toggleSidebar"
                Accessible.name: qsTr("Toggle sidebar")
                contentItem: SymbolIcon { name: "sidebar.left"; size: 22 }
                onClicked: window.sidebarShown = !window.sidebarShown
            }
            Label {
                text: "Telverra"
                font.bold: true
                font.pixelSize: 16
            }
            Item { Layout.fillWidth: true }
            WeatherCardView {
                id: weatherCard
                viewModel: window.viewModel
            }
            ToolbarPopupMenu { viewModel: window.viewModel }
        }
        }
    }

    Loader {
        id: contentLoader
        anchors.fill: parent
        asynchronous: true
        sourceComponent: SplitView {
        property alias favorites: favoritesLoader

        SidebarListView {
            visible: window.sidebarShown
            SplitView.preferredWidth: 210
            SplitView.minimumWidth: 170
            SplitView.maximumWidth: 320
            viewModel: window.viewModel
            currentSection: window.currentSection
            onSectionChosen: section => window.chooseSection(section)
            onSettingsRequested: window.openSettings()
        }

        StackLayout {
            objectName: "sections"
            SplitView.fillWidth: true
            currentIndex: ["welcome", "dialer", "recents", "favorites", "contacts"].indexOf(window.currentSection)

            WelcomeView { viewModel: window.viewModel }
            // Each section is built when first shown, then kept.
            Loader { active: window.builtSections.indexOf("dialer") >= 0; sourceComponent: dialerSection }
            Loader { active: window.builtSections.indexOf("recents") >= 0; sourceComponent: recentsSection }
            Loader { id: favoritesLoader; active: window.builtSections.indexOf("favorites") >= 0; sourceComponent: favoritesSection }
            Loader { active: window.builtSections.indexOf("contacts") >= 0; sourceComponent: contactsSection }
        }
        }
    }

    Shortcut {
        sequence: "Ctrl+,"
        onActivated: window.openSettings()
    }
    Loader {
        id: settingsLoader
        active: false
        sourceComponent: settingsWindow
    }
    Component {
        id: settingsWindow
        // Made anew at each opening, so that it shows the preferences as they are then.
        SettingsView {
            viewModel: window.viewModel
            palette: window.palette // the same light or dark
            onClosing: Qt.callLater(() => settingsLoader.active = false)
        }
    }

    Component {
        id: dialerSection
        DialerView { viewModel: window.viewModel; active: window.currentSection === "dialer" }
    }
    Component {
        id: recentsSection
        RecentsView { viewModel: window.viewModel }
    }
    Component {
        id: favoritesSection
        FavoritesView { viewModel: window.viewModel }
    }
    Component {
        id: contactsSection
        AllContactsView { viewModel: window.viewModel }
    }

    // The launch-error alert, made when first needed.
    Loader {
        id: errorAlert
        active: false
        sourceComponent: ActionDialog {
            id: alert
            objectName: "errorAlert"
            parent: Overlay.overlay
            anchors.centerIn: parent
            modal: true
            title: qsTr("Error trying to launch call")
            standardButtons: Dialog.Ok
            // A fixed width keeps the wrapped text from feeding back into the dialog's own size.
            width: Math.min(460, window.width * 0.8)
            Label {
                objectName: "errorAlertText"
                text: window.viewModel.callManagerErrorMessage
                wrapMode: Text.Wrap
                width: alert.availableWidth
            }
            Component.onCompleted: standardButton(Dialog.Ok).text = qsTr("Ok")
        }
    }
}
