// End to end: addresses built by the launcher go through the real xdg-open to a handler registered in a temporary
// XDG home, the way a desktop's phone, messaging and mail applications receive them.
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "calls/Workspace.h"
#include "settings/Preferences.h"
#include "support/TestHome.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

class tst_XdgOpenDispatch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void handlerReceivesAddressesUnchanged();

private:
    QStringList received() const;

    TestHome m_home;
    QString m_log;
};

void tst_XdgOpenDispatch::initTestCase()
{
    if (QStandardPaths::findExecutable(u"xdg-open"_qs).isEmpty() ||
        QStandardPaths::findExecutable(u"xdg-mime"_qs).isEmpty()) {
        QSKIP("xdg-utils is not installed");
    }
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")) {
        QSKIP("xdg-open hands scheme addresses to applications only on a display; run under xvfb-run");
    }
    // A desktop that xdg-open treats generically: it looks the handler up in the XDG folders.
    for (const char *name :
         {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "KDE_FULL_SESSION", "GNOME_DESKTOP_SESSION_ID", "BROWSER"}) {
        qunsetenv(name);
    }
    m_log = m_home.path() + u"/received.log";
    const QString recorder = m_home.writeFile(u"bin/recorder"_qs, "#!/bin/sh\nprintf '%s\\n' \"$1\" >> \"" +
                                                                      QFile::encodeName(m_log) + "\"\n");
    QVERIFY(!recorder.isEmpty());
    QVERIFY(QFile::setPermissions(recorder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    const QString desktop =
        m_home.writeFile(u".local/share/applications/telverra-recorder.desktop"_qs,
                         "[Desktop Entry]\nType=Application\nName=Recorder\nExec=" + QFile::encodeName(recorder) +
                             " %u\nMimeType=x-scheme-handler/tel;x-scheme-handler/sms;x-scheme-handler/mailto;\n");
    QVERIFY(!desktop.isEmpty());
    for (const char *scheme : {"tel", "sms", "mailto"}) {
        const int status = QProcess::execute(u"xdg-mime"_qs, {u"default"_qs, u"telverra-recorder.desktop"_qs,
                                                              u"x-scheme-handler/"_qs + QLatin1StringView(scheme)});
        QCOMPARE(status, 0);
    }
}

QStringList tst_XdgOpenDispatch::received() const
{
    QFile file(m_log);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

void tst_XdgOpenDispatch::handlerReceivesAddressesUnchanged()
{
    SystemWorkspace workspace;
    Preferences preferences(Preferences::defaultFilePath());
    SystemClipboard clipboard;
    CallsManager manager(workspace, preferences, clipboard);

    QVERIFY(manager.makePhoneCall(u"+34 600-12.34/56"_qs).isSuccess());
    QTRY_COMPARE_WITH_TIMEOUT(received().size(), 1, 20000);
    QVERIFY(manager.sendMessage(u"600 12 34"_qs).isSuccess());
    QTRY_COMPARE_WITH_TIMEOUT(received().size(), 2, 20000);
    QVERIFY(manager.sendEmail(u"bob@example.com?subject=Hello%20Bob"_qs).isSuccess());
    QTRY_COMPARE_WITH_TIMEOUT(received().size(), 3, 20000);
    QVERIFY2(!manager.sendEmail(u"bob@example.com?attach=/etc/passwd"_qs).isSuccess(), "refused before xdg-open");

    QTest::qWait(500); // nothing further arrives
    QCOMPARE(received(), (QStringList{u"tel://+34600123456"_qs, u"sms:6001234"_qs,
                                      u"mailto:bob@example.com?subject=Hello%20Bob"_qs}));
}

QTEST_GUILESS_MAIN(tst_XdgOpenDispatch)
#include "tst_XdgOpenDispatch.moc"
