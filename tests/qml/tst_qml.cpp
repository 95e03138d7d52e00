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
    Q_INVOKABLE QStringList launches() const { return env->workspace.opened; }
    Q_INVOKABLE void clearLaunches() { env->workspace.opened.clear(); }
    /// Schemes no application opens from now on.
    Q_INVOKABLE void setMissingSchemes(const QStringList &schemes) { env->workspace.missingSchemes = schemes; }
    Q_INVOKABLE void setClipboard(const QString &text) { QGuiApplication::clipboard()->setText(text); }
    Q_INVOKABLE QString clipboard() const { return QGuiApplication::clipboard()->text(); }
    /// A key press and release delivered to a window of its own (the test's key functions reach only the test's).
    Q_INVOKABLE void sendKey(QWindow *window, int key, int modifiers)
    {
        QTest::keyClick(window, static_cast<Qt::Key>(key), Qt::KeyboardModifiers(modifiers));
    }
    /// A preference, by key name (the settings window writes them the same way).
    Q_INVOKABLE void setPreference(const QString &name, bool value) { env->preferences->setBoolValue(name, value); }
    Q_INVOKABLE bool preference(const QString &name) const { return env->preferences->boolValue(name); }
    /// The preference store of a fresh installation (a file of its own that nothing was written to yet).
    Q_INVOKABLE QObject *freshPreferences()
    {
        // Parented, so that QML does not take it over.
        return new Preferences(env->storeFile() + u".fresh-" + QString::number(++m_fresh) + u".conf", this);
    }
    Q_INVOKABLE bool weatherTimerActive() const
    {
        return env->viewModel->weatherTimer() && env->viewModel->weatherTimer()->isActive();
    }
    Q_INVOKABLE bool launchesAtLogin() const { return QFile::exists(LaunchAtLogin::userEntry()); }
    /// Saves a link, or a favourite contact record as it is (duplicates included), as another window would.
    Q_INVOKABLE void storeFavoriteTelco(const QString &name, const QString &value)
    {
        env->viewModel->favoritesDataService().addFavoriteTelco(name, u"jitsi"_qs, value);
        env->viewModel->favoritesDataService().fetchFavoriteTelcos();
    }
    Q_INVOKABLE void storeFavoriteContact(const QString &contactID)
    {
        env->viewModel->favoritesDataService().addFavoriteContact(QString(), QString(), contactID);
        env->viewModel->favoritesDataService().fetchFavoriteContacts();
    }
    /// The program's trace lines from now on (until the next call).
    Q_INVOKABLE void captureTrace() { m_capture.emplace(); }
    Q_INVOKABLE QStringList traceLines() const { return m_capture ? m_capture->lines() : QStringList(); }
    /// The rows of a query as the store file holds them, columns joined by "|".
    Q_INVOKABLE QStringList stored(const QString &sql) const { return StoreProbe::rows(env->storeFile(), sql); }

    std::unique_ptr<AppEnvironment> env;

private:
    int m_fresh = 0;
    std::optional<Trace::Capture> m_capture;
};

class Setup : public QObject
{
    Q_OBJECT
public Q_SLOTS:
    // Called for every test file, each with an engine of its own; the environment is made once.
    void qmlEngineAvailable(QQmlEngine *engine)
    {
        if (!m_support.env) {
            m_support.env = std::make_unique<AppEnvironment>();
            QVERIFY(m_support.env->valid);
        }
        m_support.env->prepareEngine(*engine);
        engine->rootContext()->setContextProperty(u"viewModel"_qs, m_support.env->viewModel.get());
        engine->rootContext()->setContextProperty(u"testSupport"_qs, &m_support);
    }

private:
    TestSupport m_support;
};

QUICK_TEST_MAIN_WITH_SETUP(telverra_qml, Setup)

#include "tst_qml.moc"
