#include "settings/LaunchAtLogin.h"
#include "support/TestHome.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

namespace {

// The desktop's Background portal, answering every request with what was asked, as a user who agrees would.
class AgreeingPortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Background")
public Q_SLOTS:
    QDBusObjectPath RequestBackground(const QString &, const QVariantMap &options)
    {
        QString sender = message().service().sliced(1);
        sender.replace(u'.', u'_');
        QString path = QStringLiteral("/org/freedesktop/portal/desktop/request/");
        path += sender + u'/' + options.value(u"handle_token"_qs).toString();
        asked.append(options);
        QDBusMessage response = QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_qs, u"Response"_qs);
        response << 0u << QVariantMap{{u"autostart"_qs, options.value(u"autostart"_qs)}};
        connection().send(response); // before the reply: the caller must have subscribed already
        return QDBusObjectPath(path);
    }

public:
    QList<QVariantMap> asked;
};

} // namespace

class tst_LaunchAtLogin : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();
    void execArgument_data();
    void execArgument();
    void entryStartsThisProgram();
    void systemEntryIsMasked();
    void readBack_data();
    void readBack();
    void sandboxAsksThePortal();

private:
    std::unique_ptr<TestHome> m_home;
    QString m_systemDir;
};

void tst_LaunchAtLogin::init()
{
    m_home = std::make_unique<TestHome>();
    m_systemDir = m_home->path() + u"/etc-xdg";
    qputenv("XDG_CONFIG_DIRS", QFile::encodeName(m_systemDir));
}

void tst_LaunchAtLogin::cleanup()
{
    qunsetenv("XDG_CONFIG_DIRS");
    m_home.reset();
}

void tst_LaunchAtLogin::execArgument_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("written");
    QTest::newRow("plain") << u"/usr/bin/telverra"_qs << u"/usr/bin/telverra"_qs;
    QTest::newRow("blanks") << u"/opt/My Apps/telverra"_qs << u"\"/opt/My Apps/telverra\""_qs;
    // Inside the quotes ", `, $ and \ take a backslash, and the value's own escaping doubles every backslash.
    QTest::newRow("quote and dollar") << u"/opt/a\"b$c/t"_qs << u"\"/opt/a\\\\\"b\\\\$c/t\""_qs;
    QTest::newRow("backslash") << u"/opt/a\\b"_qs << u"\"/opt/a\\\\\\\\b\""_qs;
    QTest::newRow("percent") << u"/opt/100%/t"_qs << u"/opt/100%%/t"_qs;
}

void tst_LaunchAtLogin::execArgument()
{
    QFETCH(QString, path);
    QFETCH(QString, written);
    QCOMPARE(LaunchAtLogin::execArgument(path), written);
}

void tst_LaunchAtLogin::entryStartsThisProgram()
{
    LaunchAtLogin launch(u"/opt/My Apps/telverra"_qs, {});
    QVERIFY(!launch.isEnabled());
    QSignalSpy changed(&launch, &LaunchAtLogin::isEnabledChanged);
    for (bool enabled : {true, false, true}) {
        launch.setEnabled(enabled);
        QCOMPARE(launch.isEnabled(), enabled);
        QCOMPARE(QFile::exists(LaunchAtLogin::userEntry()), enabled); // off removes the file
    }
    QCOMPARE(changed.size(), 3);
    QCOMPARE(LaunchAtLogin::userEntry(),
             QString(m_home->configHome() + u"/autostart/org.telverra.Telverra-LaunchAtLoginHelper.desktop"));
    const QString entry = m_home->read(LaunchAtLogin::userEntry());
    QVERIFY2(entry.startsWith(u"[Desktop Entry]\nType=Application\n"), qPrintable(entry));
    for (const QString &line : {u"Exec=\"/opt/My Apps/telverra\""_qs, u"TryExec=/opt/My Apps/telverra"_qs,
                                u"X-GNOME-Autostart-enabled=true"_qs}) {
        QVERIFY2(entry.contains(u'\n' + line + u'\n'), qPrintable(line));
    }
}

void tst_LaunchAtLogin::systemEntryIsMasked()
{
    m_home->writeFile(u"etc-xdg/autostart/org.telverra.Telverra-LaunchAtLoginHelper.desktop"_qs,
                      "[Desktop Entry]\nType=Application\nExec=telverra\n");
    LaunchAtLogin launch(u"/usr/bin/telverra"_qs, {});
    QVERIFY(launch.isEnabled()); // the system's entry starts it
    launch.setEnabled(false);
    QVERIFY(!launch.isEnabled());
    QVERIFY(m_home->read(LaunchAtLogin::userEntry()).contains(u"\nHidden=true\n"));
    launch.setEnabled(true);
    QVERIFY(launch.isEnabled());
    QVERIFY(!m_home->read(LaunchAtLogin::userEntry()).contains(u"Hidden"));
}

void tst_LaunchAtLogin::readBack_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("plain entry") << QByteArray("[Desktop Entry]\nExec=telverra\n") << true;
    QTest::newRow("hidden") << QByteArray("[Desktop Entry]\nExec=telverra\nHidden=true\n") << false;
    QTest::newRow("GNOME switch off") << QByteArray("[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n") << false;
    QTest::newRow("GNOME switch on") << QByteArray("[Desktop Entry]\nX-GNOME-Autostart-enabled=true\n") << true;
    QTest::newRow("keys of another group") << QByteArray("[Desktop Action x]\nHidden=true\n[Desktop Entry]\n") << true;
}

void tst_LaunchAtLogin::readBack()
{
    QFETCH(QByteArray, entry);
    QFETCH(bool, enabled);
    m_home->writeFile(u".config/autostart/org.telverra.Telverra-LaunchAtLoginHelper.desktop"_qs, entry);
    QCOMPARE(LaunchAtLogin(u"/usr/bin/telverra"_qs, {}).isEnabled(), enabled);
}

void tst_LaunchAtLogin::sandboxAsksThePortal()
{
    QDBusConnection portalBus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_qs);
    if (!portalBus.isConnected()) {
        QSKIP("no session bus");
    }
    AgreeingPortal portal;
    QVERIFY(portalBus.registerObject(u"/org/freedesktop/portal/desktop"_qs, &portal, QDBusConnection::ExportAllSlots));
    QVERIFY(portalBus.registerService(u"org.freedesktop.portal.Desktop"_qs));
    const QString sandboxInfo = m_home->writeFile(u"flatpak-info"_qs, "[Application]\nname=org.telverra.Telverra\n");

    LaunchAtLogin launch(u"/app/bin/telverra"_qs, sandboxInfo);
    QSignalSpy changed(&launch, &LaunchAtLogin::isEnabledChanged);
    for (bool enabled : {true, false}) {
        launch.setEnabled(enabled);
        QTRY_COMPARE(launch.isEnabled(), enabled);
        QCOMPARE(portal.asked.last().value(u"autostart"_qs).toBool(), enabled);
    }
    QCOMPARE(portal.asked.first().value(u"commandline"_qs).toStringList(), QStringList{u"telverra"_qs});
    QVERIFY(!QFile::exists(LaunchAtLogin::userEntry())); // nothing written beside the portal
    portalBus.unregisterService(u"org.freedesktop.portal.Desktop"_qs);
    QDBusConnection::disconnectFromBus(u"portal"_qs);
}

QTEST_GUILESS_MAIN(tst_LaunchAtLogin)
#include "tst_LaunchAtLogin.moc"
