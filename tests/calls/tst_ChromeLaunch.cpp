// Google Chrome started for real: a stand-in executable records the arguments it was given, and the desktop's default
// browser is a recording handler registered in the temporary home.
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "calls/Workspace.h"
#include "common/Trace.h"
#include "settings/Preferences.h"
#include "support/TestHome.h"

#include <QFile>
#include <QTest>

class tst_ChromeLaunch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void argumentsEndSwitchesBeforeTheAddress();
    void hostileTextNeverReachesChrome_data();
    void hostileTextNeverReachesChrome();
    void missingChromeFallsBackToDefaultBrowser();

private:
    static QStringList lines(const QString &path);

    TestHome m_home;
    QString m_chrome;
    QString m_chromeLog;
    QString m_defaultLog;
};

QStringList tst_ChromeLaunch::lines(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                                          : QStringList();
}

void tst_ChromeLaunch::initTestCase()
{
    m_chromeLog = m_home.path() + u"/chrome.log";
    m_defaultLog = m_home.path() + u"/default.log";
    // One line per argument, so that an address split into several arguments would show.
    m_chrome =
        m_home.writeScript(u"bin/google-chrome"_qs, "#!/bin/sh\nfor a in \"$@\"; do printf '%s\\n' \"$a\"; done >> \"" +
                                                        QFile::encodeName(m_chromeLog) + "\"\n");
    QVERIFY(!m_chrome.isEmpty());
    QVERIFY(m_home.registerRecordingHandler({u"https"_qs}, m_defaultLog));
}

void tst_ChromeLaunch::init()
{
    QFile::remove(m_chromeLog);
    QFile::remove(m_defaultLog);
}

void tst_ChromeLaunch::argumentsEndSwitchesBeforeTheAddress()
{
    SystemWorkspace workspace(m_chrome);
    Preferences preferences(m_home.configHome() + u"/chrome.conf");
    SystemClipboard clipboard;
    CallsManager manager(workspace, preferences, clipboard);
    Trace::Capture capture;
    const QString link = u"https://meet.google.com/abc-defg-hij?authuser=0&hs=1"_qs;
    manager.openTelco(link, [](const CallResult &) {});
    QTRY_COMPARE(lines(m_chromeLog), (QStringList{u"--"_qs, link}));
    QTRY_VERIFY(capture.lines().contains(u"Successfully openned URL "_qs + link + u" call in google-chrome"));
    QVERIFY(lines(m_defaultLog).isEmpty());
}

void tst_ChromeLaunch::hostileTextNeverReachesChrome_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("switch before link") << u"--renderer-cmd-prefix=/tmp/x https://meet.google.com/"_qs;
    QTest::newRow("javascript") << u"javascript:alert(1)//https://zoom.us/j/1"_qs;
    QTest::newRow("file") << u"file:///etc/passwd?https://meet.google.com/"_qs;
    QTest::newRow("bidi override") << u"https://meet.google.com/abc\u202Eexe"_qs;
    QTest::newRow("newline then switch") << u"https://meet.google.com/abc\n--no-sandbox"_qs;
    QTest::newRow("data with zoom part") << u"data:text/html,<script>zoom.us/</script>"_qs;
}

void tst_ChromeLaunch::hostileTextNeverReachesChrome()
{
    QFETCH(QString, text);
    SystemWorkspace workspace(m_chrome);
    Preferences preferences(m_home.configHome() + u"/chrome.conf");
    SystemClipboard clipboard;
    CallsManager manager(workspace, preferences, clipboard);
    Trace::Capture capture;
    manager.openTelco(text, [](const CallResult &) {});
    QTest::qWait(300);
    QVERIFY(lines(m_chromeLog).isEmpty());
    QVERIFY(lines(m_defaultLog).isEmpty());
    QVERIFY(capture.lines().contains(u"Error creating URL for Chrome"_qs));
}

void tst_ChromeLaunch::missingChromeFallsBackToDefaultBrowser()
{
    SystemWorkspace workspace(m_home.path() + u"/no-such-chrome"_qs);
    Preferences preferences(m_home.configHome() + u"/chrome.conf");
    SystemClipboard clipboard;
    CallsManager manager(workspace, preferences, clipboard);
    Trace::Capture capture;
    const QString link = u"https://meet.jit.si/Standup"_qs;
    manager.openInBrowser(link);
    QTRY_COMPARE(lines(m_defaultLog), QStringList{link});
    QVERIFY(capture.lines().contains(u"The application “Google Chrome” could not be found."_qs));
    QVERIFY(lines(m_chromeLog).isEmpty());
}

QTEST_GUILESS_MAIN(tst_ChromeLaunch)
#include "tst_ChromeLaunch.moc"
