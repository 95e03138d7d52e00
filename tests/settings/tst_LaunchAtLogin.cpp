#include "settings/LaunchAtLogin.h"
#include "support/TestHome.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
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
        const QString sender = message().service().sliced(1).replace(u'.', u'_');
        const QString path = u"/org/freedesktop/portal/desktop/request/"_qs + sender + u'/' +
                             options.value(u"handle_token"_qs).toString();
        asked.append(options);
        QDBusMessage response = QDBusMessage::createSignal(path, u"org.freedesktop.portal.Request"_qs, u"Response"_qs);
        response << 0u << QVariantMap{{u"autostart"_qs, options.value(u"autostart"_qs)}};
        connection().send(response); // before the reply: the caller must have subscribed already
        return QDBusObjectPath(path);
    }

public:
    QList<QVariantMap> asked;
};

const QString entryName = u"autostart/org.telverra.Telverra-LaunchAtLoginHelper.desktop"_qs;

} // namespace

class tst_LaunchAtLogin : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_home.emplace();
        qputenv("XDG_CONFIG_DIRS", QFile::encodeName(m_home->path() + u"/etc-xdg"));
    }
    void cleanup()
    {
        qunsetenv("XDG_CONFIG_DIRS");
        m_home.reset();
    }

    void execArgument_data()
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
    void execArgument()
    {
        QFETCH(QString, path);
        QFETCH(QString, written);
        QCOMPARE(LaunchAtLogin::execArgument(path), written);
    }

    void toggling_data()
    {
        QTest::addColumn<bool>("systemEntry");
        QTest::newRow("own entry: off removes it") << false;
        QTest::newRow("system entry: off masks it") << true;
    }
    void toggling()
    {
        QFETCH(bool, systemEntry);
        if (systemEntry) {
            m_home->writeFile(u"etc-xdg/"_qs + entryName, "[Desktop Entry]\nType=Application\nExec=telverra\n");
        }
        QCOMPARE(LaunchAtLogin::userEntry(), QString(m_home->configHome() + u'/' + entryName));
        LaunchAtLogin launch(u"/opt/My Apps/telverra"_qs, {});
        QCOMPARE(launch.isEnabled(), systemEntry);
        QSignalSpy changed(&launch, &LaunchAtLogin::isEnabledChanged);
        for (bool enabled : {false, true, false, true}) {
            launch.setEnabled(enabled);
            QCOMPARE(launch.isEnabled(), enabled);
            QCOMPARE(QFile::exists(LaunchAtLogin::userEntry()), enabled || systemEntry);
            QCOMPARE(m_home->read(LaunchAtLogin::userEntry()).contains(u"\nHidden=true\n"), !enabled && systemEntry);
        }
        QCOMPARE(changed.size(), 4);
        const QString entry = m_home->read(LaunchAtLogin::userEntry());
        QVERIFY2(entry.startsWith(u"[Desktop Entry]\nType=Application\n"), qPrintable(entry));
        for (const QString &line : {u"Exec=\"/opt/My Apps/telverra\""_qs, u"TryExec=/opt/My Apps/telverra"_qs,
                                    u"X-GNOME-Autostart-enabled=true"_qs}) {
            QVERIFY2(entry.contains(u'\n' + line + u'\n'), qPrintable(line));
        }
    }

    void readBack_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("plain entry") << QByteArray("[Desktop Entry]\nExec=telverra\n") << true;
        QTest::newRow("hidden") << QByteArray("[Desktop Entry]\nExec=telverra\nHidden=true\n") << false;
        QTest::newRow("GNOME switch off") << QByteArray("[Desktop Entry]\nX-GNOME-Autostart-enabled=false\n") << false;
        QTest::newRow("GNOME switch on") << QByteArray("[Desktop Entry]\nX-GNOME-Autostart-enabled=true\n") << true;
        QTest::newRow("keys of another group")
            << QByteArray("[Desktop Action x]\nHidden=true\n[Desktop Entry]\n") << true;
    }
    void readBack()
    {
        QFETCH(QByteArray, entry);
        QFETCH(bool, enabled);
        m_home->writeFile(u".config/"_qs + entryName, entry);
        QCOMPARE(LaunchAtLogin(u"/usr/bin/telverra"_qs, {}).isEnabled(), enabled);
    }

    void sandboxAsksThePortal()
    {
        QDBusConnection portalBus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"portal"_qs);
        if (!portalBus.isConnected()) {
            QSKIP("no session bus");
        }
        AgreeingPortal portal;
        QVERIFY(
            portalBus.registerObject(u"/org/freedesktop/portal/desktop"_qs, &portal, QDBusConnection::ExportAllSlots));
        QVERIFY(portalBus.registerService(u"org.freedesktop.portal.Desktop"_qs));
        LaunchAtLogin launch(u"/app/bin/telverra"_qs,
                             m_home->writeFile(u"flatpak-info"_qs, "[Application]\nname=org.telverra.Telverra\n"));
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

private:
    std::optional<TestHome> m_home;
};

QTEST_GUILESS_MAIN(tst_LaunchAtLogin)
#include "tst_LaunchAtLogin.moc"
