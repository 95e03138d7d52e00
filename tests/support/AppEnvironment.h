#pragma once

#include "support/LoopbackHttpServer.h"
#include "support/RecordingWorkspace.h"
#include "support/ScriptedLocation.h"
#include "support/TestHome.h"

#include "calls/Clipboard.h"

#include <QNetworkAccessManager>

#include <memory>

class CallsManager;
class ContactStoreManager;
class CoreDataManager;
class DeploymentSettings;
class HomeWindowViewModel;
class Preferences;
class QQmlEngine;
class VCardDirectoryStore;
class BrowserTabSource;

/// The application as a user meets it, in process: a real view model over a temporary home and store, an address-book
/// folder, the real clipboard, a recording opener, a weather document served on 127.0.0.1, and a QML engine set up as
/// the program sets up its own. The welcome screen stays (no hand-over timer) and meetings open in the default browser.
class AppEnvironment
{
public:
    /// The address book the environment starts with: García (a mobile), Smith (a work and a home number), -Dash (an
    /// e-mail address only) and the company 3M.
    static const char *const defaultAddressBook;

    explicit AppEnvironment(const QByteArray &addressBook = defaultAddressBook);
    ~AppEnvironment();
    AppEnvironment(const AppEnvironment &) = delete;
    AppEnvironment &operator=(const AppEnvironment &) = delete;

    /// Whether everything could be set up (the home, the server, the weather document).
    bool isValid() const { return m_valid; }
    HomeWindowViewModel &viewModel() { return *m_viewModel; }
    Preferences &preferences() { return *m_preferences; }
    RecordingWorkspace &workspace() { return m_workspace; }
    const TestHome &home() const { return m_home; }
    QString storeFile() const;
    /// The import path and the image providers the program's windows use.
    void prepareEngine(QQmlEngine &engine);

private:
    bool m_valid = false;
    TestHome m_home;
    LoopbackHttpServer m_server;
    QNetworkAccessManager m_network;
    std::unique_ptr<DeploymentSettings> m_deployment;
    std::unique_ptr<Preferences> m_preferences;
    RecordingWorkspace m_workspace;
    SystemClipboard m_clipboard;
    std::unique_ptr<BrowserTabSource> m_tabs;
    std::unique_ptr<CallsManager> m_calls;
    std::unique_ptr<CoreDataManager> m_store;
    std::unique_ptr<VCardDirectoryStore> m_addressBook;
    std::unique_ptr<ContactStoreManager> m_contacts;
    ScriptedServices m_location;
    ScriptedGeocoder m_geocoder;
    std::unique_ptr<HomeWindowViewModel> m_viewModel;
};
