// Run under dbus-run-session: a stand-in of Plasma's browser integration answers GetTabs on a private session bus
// (the real one needs Plasma and its browser extension).
#include "calls/CallsManager.h"
#include "calls/PlasmaBrowserTabSource.h"

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QTest>

class TabsRunner : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.plasma.browser_integration.TabsRunner")
public Q_SLOTS:
    QList<QVariantMap> GetTabs()
    {
        return {{{u"windowId"_qs, 12}, {u"title"_qs, u"Inbox"_qs}, {u"url"_qs, u"https://mail.example/"_qs}},
                {{u"windowId"_qs, 30}, {u"title"_qs, u"Meet - ~new"_qs}, {u"url"_qs, u"https://meet.google.com/q"_qs}},
                {{u"windowId"_qs, 12}, {u"title"_qs, u"Docs"_qs}, {u"url"_qs, u"https://docs.example/"_qs}}};
    }
};

class Fixed : public BrowserTabSource
{
public:
    std::optional<ScriptValue> run(const QString &, bool) override { return ScriptValue::fromList({}); }
};

class tst_PlasmaBrowserTabSource : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void tabsGroupedByWindow();

private:
    TabsRunner m_runner;
};

void tst_PlasmaBrowserTabSource::initTestCase()
{
    qDBusRegisterMetaType<QVariantMap>();
    qDBusRegisterMetaType<QList<QVariantMap>>();
    if (!QDBusConnection::sessionBus().isConnected()) {
        QSKIP("no session bus: run under dbus-run-session");
    }
}

void tst_PlasmaBrowserTabSource::tabsGroupedByWindow()
{
    QVERIFY(!PlasmaBrowserTabSource().run(CallsManager::myAppleScriptChrome, true)); // no service yet
    QDBusConnection bus = QDBusConnection::sessionBus();
    QVERIFY(bus.registerObject(u"/TabsRunner"_qs, &m_runner, QDBusConnection::ExportAllSlots));
    QVERIFY(bus.registerService(u"org.kde.plasma.browser_integration"_qs));
    const std::optional<ScriptValue> answer = PlasmaBrowserTabSource().run(CallsManager::myAppleScriptSafari, false);
    QVERIFY(answer.has_value());
    const QList<BrowserWindow> windows = CallsManager::browserWindows(*answer);
    QCOMPARE(windows.size(), 2);
    QCOMPARE(windows.at(0),
             (BrowserWindow{u"Window ID: 12"_qs,
                            {{u"Inbox"_qs, u"https://mail.example/"_qs}, {u"Docs"_qs, u"https://docs.example/"_qs}}}));
    QCOMPARE(CallsManager::meetingURL(windows), u"https://meet.google.com/q"_qs);

    // The desktop's source asks its sources in order, for Chrome and for the default browser apart.
    PlasmaBrowserTabSource plasma;
    Fixed empty;
    DesktopBrowserTabSource chromeFirstPlasma({&plasma, &empty}, {&empty});
    QCOMPARE(CallsManager::browserWindows(*chromeFirstPlasma.run(QString(), true)).size(), 2);
    QCOMPARE(CallsManager::browserWindows(*chromeFirstPlasma.run(QString(), false)).size(), 0);
}

QTEST_GUILESS_MAIN(tst_PlasmaBrowserTabSource)
#include "tst_PlasmaBrowserTabSource.moc"
