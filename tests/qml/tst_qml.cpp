// Qt Quick Tests of the screens, each over the real view model of an AppEnvironment: a temporary home and store, an
// address-book folder, the real clipboard, a recording opener, and a weather document served on 127.0.0.1.
#include "app/HomeWindowViewModel.h"
#include "common/Trace.h"
#include "favorites/FavoritesDataService.h"
#include "settings/LaunchAtLogin.h"
#include "settings/Preferences.h"
#include "support/AppEnvironment.h"
#include "support/StoreProbe.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QTest>
#include <QWindow>
#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(TelverraPlugin)

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
        if (!m_environment) {
            m_environment = std::make_unique<AppEnvironment>();
            QVERIFY(m_environment->isValid());
            m_support.workspace = &m_environment->workspace();
            m_support.viewModel = &m_environment->viewModel();
            m_support.preferences = &m_environment->preferences();
            m_support.storeFile = m_environment->storeFile();
        }
        m_environment->prepareEngine(*engine);
        engine->rootContext()->setContextProperty(u"viewModel"_qs, &m_environment->viewModel());
        engine->rootContext()->setContextProperty(u"testSupport"_qs, &m_support);
    }

private:
    std::unique_ptr<AppEnvironment> m_environment;
    TestSupport m_support;
};

QUICK_TEST_MAIN_WITH_SETUP(telverra_qml, Setup)

#include "tst_qml.moc"
