// Qt Quick Tests of the screens, each over a real view model: a temporary home and store, an address-book folder,
// the real clipboard, a recording opener, and a weather document served on 127.0.0.1.
#include "app/HomeWindowViewModel.h"
#include "app/SymbolIconProvider.h"
#include "calls/BrowserTabSource.h"
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "common/Trace.h"
#include "contacts/ContactPhotoProvider.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "favorites/FavoritesDataService.h"
#include "settings/DeploymentSettings.h"
#include "settings/LaunchAtLogin.h"
#include "settings/Preferences.h"
#include "store/CoreDataManager.h"
#include "support/LoopbackHttpServer.h"
#include "support/RecordingWorkspace.h"
#include "support/ScriptedLocation.h"
#include "support/StoreProbe.h"
#include "support/TestHome.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QNetworkAccessManager>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTest>
#include <QWindow>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

namespace {

class NoTabs : public BrowserTabSource
{
public:
    std::optional<ScriptValue> run(const QString &, bool) override { return ScriptValue::fromList({}); }
};

} // namespace

/// What the QML tests read and arrange beyond the view model.
class TestSupport : public QObject
{
    Q_OBJECT
public:
    explicit TestSupport(QObject *parent = nullptr)
        : QObject(parent)
    {}

    Q_INVOKABLE QStringList launches() const { return workspace ? workspace->opened : QStringList(); }
    Q_INVOKABLE void clearLaunches()
    {
        if (workspace) {
            workspace->opened.clear();
        }
    }
    /// Schemes no application opens from now on.
    Q_INVOKABLE void setMissingSchemes(const QStringList &schemes)
    {
        if (workspace) {
            workspace->missingSchemes = schemes;
        }
    }
    Q_INVOKABLE void setClipboard(const QString &text) { QGuiApplication::clipboard()->setText(text); }
    Q_INVOKABLE QString clipboard() const { return QGuiApplication::clipboard()->text(); }
    /// A key press and release delivered to a window of its own (the test's key functions reach only the test's).
    Q_INVOKABLE void sendKey(QWindow *window, int key, int modifiers)
    {
        QTest::keyClick(window, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    }
    /// A preference, by key name (the settings window writes them the same way).
    Q_INVOKABLE void setPreference(const QString &name, bool value)
    {
        if (preferences) {
            preferences->setBoolValue(name, value);
        }
    }
    Q_INVOKABLE bool preference(const QString &name) const { return preferences && preferences->boolValue(name); }
    /// The preference store of a fresh installation (a file of its own that nothing was written to yet).
    Q_INVOKABLE QObject *freshPreferences()
    {
        // Parented, so that QML does not take it over.
        return new Preferences(storeFile + u".fresh-" + QString::number(++freshCount) + u".conf", this);
    }
    Q_INVOKABLE bool weatherTimerActive() const
    {
        return viewModel->weatherTimer() && viewModel->weatherTimer()->isActive();
    }
    Q_INVOKABLE bool launchesAtLogin() const { return QFile::exists(LaunchAtLogin::userEntry()); }
    Q_INVOKABLE void storeFavoriteTelco(const QString &name, const QString &value)
    {
        viewModel->favoritesDataService().addFavoriteTelco(name, u"jitsi"_qs, value);
        viewModel->favoritesDataService().fetchFavoriteTelcos();
    }
    Q_INVOKABLE int favoriteContactCount(const QString &contactID) const
    {
        return viewModel ? int(viewModel->favoritesDataService().favoriteContacts(contactID).size()) : 0;
    }
    /// The program's trace lines from now on (until the next call).
    Q_INVOKABLE void captureTrace() { capture.emplace(); }
    Q_INVOKABLE QStringList traceLines() const { return capture ? capture->lines() : QStringList(); }
    /// The saved links as the store file holds them, in their order: "name|type|value".
    Q_INVOKABLE QStringList storedTelcos() const
    {
        return StoreProbe::rows(storeFile, u"SELECT telcoName, telcoType, telcoValue FROM FavoriteTelcoEntity "
                                           u"ORDER BY orderIndex, id"_qs);
    }
    /// Saves a favourite contact record as it is, duplicates included.
    Q_INVOKABLE void storeFavoriteContact(const QString &contactID)
    {
        viewModel->favoritesDataService().addFavoriteContact(QString(), QString(), contactID);
        viewModel->favoritesDataService().fetchFavoriteContacts();
    }
    Q_INVOKABLE int favoriteTelcoCount() const
    {
        if (!viewModel) {
            return 0;
        }
        viewModel->favoritesDataService().fetchFavoriteTelcos(); // adding does not reload the list
        return static_cast<int>(viewModel->favoritesDataService().savedFavoriteTelcos().size());
    }

    RecordingWorkspace *workspace = nullptr;
    HomeWindowViewModel *viewModel = nullptr;
    Preferences *preferences = nullptr;
    QString storeFile;
    int freshCount = 0;
    std::optional<Trace::Capture> capture;
};

class Setup : public QObject
{
    Q_OBJECT
public Q_SLOTS:
    // Called for every test file, each with an engine of its own; the environment is made once.
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        if (!m_viewModel) {
            makeEnvironment();
        }
        engine->addImportPath(u"qrc:/qt/qml"_qs);
        engine->addImageProvider(u"symbols"_qs, new SymbolIconProvider);
        const ContactsDataService *contacts = &m_viewModel->contactsDataService();
        engine->addImageProvider(u"contactphoto"_qs, new ContactPhotoProvider([contacts](const QString &id) {
                                     return contacts->record(id);
                                 }));
        engine->rootContext()->setContextProperty(u"viewModel"_qs, m_viewModel.get());
        engine->rootContext()->setContextProperty(u"testSupport"_qs, &m_support);
    }

private:
    void makeEnvironment()
    {
        m_home.writeFile(u".local/share/contacts/people/people.vcf"_qs,
                         "BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nTEL;TYPE=WORK:+1 555 0100\n"
                         "TEL;TYPE=HOME:+1 555 0101\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:dee\nN:-Dash;Dee;;;\nEMAIL:dee@example.org\nEND:VCARD\n"
                         "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n");
        QVERIFY(m_server.listen());
        QFile onecall(QStringLiteral(TELVERRA_TEST_DATA "/onecall.json"));
        QVERIFY(onecall.open(QIODevice::ReadOnly));
        m_server.setResponse(u"/data/2.5/onecall"_qs, 200, "application/json", onecall.readAll());
        m_deployment = std::make_unique<DeploymentSettings>(m_home.writeFile(
            u"Info.ini"_qs, (u"[General]\nWEATHER_API_KEY=k\nWEATHER_API_BASE_URL=" + m_server.baseUrl()).toUtf8()));
        m_preferences = std::make_unique<Preferences>(Preferences::defaultFilePath());
        m_preferences->setValue(PreferenceKey::useChromeAsDefaultBrowser, false);
        m_preferences->setValue(PreferenceKey::fixedQuoteOnStartup, true);
        m_calls = std::make_unique<CallsManager>(m_workspace, *m_preferences, m_clipboard);
        m_calls->setBrowserTabSource(&m_tabs);
        m_store = std::make_unique<CoreDataManager>(m_home.dataHome() + u"/telverra/Telverra.sqlite");
        m_addressBook = std::make_unique<VCardDirectoryStore>();
        m_contacts = std::make_unique<ContactStoreManager>(*m_addressBook);
        m_location.status = LocationManager::authorizedWhenInUse;
        m_location.position = QGeoCoordinate(28.4636, -16.2518);
        m_viewModel = std::make_unique<HomeWindowViewModel>(
            HomeWindowViewModel::Environment{m_preferences.get(), m_calls.get(), m_store.get(), m_contacts.get(),
                                             &m_clipboard, &m_network, m_deployment.get(), &m_location, &m_geocoder});
        m_support.workspace = &m_workspace;
        m_support.viewModel = m_viewModel.get();
        m_support.preferences = m_preferences.get();
        m_support.storeFile = m_home.dataHome() + u"/telverra/Telverra.sqlite";
    }

    TestHome m_home;
    LoopbackHttpServer m_server;
    QNetworkAccessManager m_network;
    std::unique_ptr<DeploymentSettings> m_deployment;
    std::unique_ptr<Preferences> m_preferences;
    RecordingWorkspace m_workspace;
    SystemClipboard m_clipboard;
    NoTabs m_tabs;
    std::unique_ptr<CallsManager> m_calls;
    std::unique_ptr<CoreDataManager> m_store;
    std::unique_ptr<VCardDirectoryStore> m_addressBook;
    std::unique_ptr<ContactStoreManager> m_contacts;
    ScriptedServices m_location;
    ScriptedGeocoder m_geocoder;
    std::unique_ptr<HomeWindowViewModel> m_viewModel;
    TestSupport m_support;
};

QUICK_TEST_MAIN_WITH_SETUP(telverra_qml, Setup)

#include "tst_qml.moc"
