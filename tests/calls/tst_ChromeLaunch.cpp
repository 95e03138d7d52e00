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
    void linkReachesChromeAfterTheSwitches_data();
    void linkReachesChromeAfterTheSwitches();

private:
    TestHome m_home;
};

void tst_ChromeLaunch::initTestCase()
{
    // One line per argument, so that an address split into several arguments would show.
    QVERIFY(!m_home.writeRecorder(u"bin/google-chrome"_qs, u"chrome.log"_qs).isEmpty());
    QVERIFY(m_home.registerRecordingHandler({u"https"_qs}, m_home.path() + u"/default.log"));
}

void tst_ChromeLaunch::linkReachesChromeAfterTheSwitches_data()
{
    QTest::addColumn<QString>("chrome");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("chromeGets");
    QTest::addColumn<QStringList>("defaultBrowserGets");
    QTest::addColumn<QString>("trace");
    const QString chrome = m_home.path() + u"/bin/google-chrome";
    const QString link = u"https://meet.google.com/abc-defg-hij?authuser=0&hs=1"_qs;
    QTest::newRow("a link, after --") << chrome << link << QStringList{u"--"_qs, link} << QStringList()
                                      << u"Successfully openned URL "_qs + link + u" call in google-chrome";
    QTest::newRow("no Chrome: the default browser")
        << m_home.path() + u"/no-such-chrome" << u"https://meet.jit.si/Standup"_qs << QStringList()
        << QStringList{u"https://meet.jit.si/Standup"_qs} << u"The application “Google Chrome” could not be found."_qs;
}

void tst_ChromeLaunch::linkReachesChromeAfterTheSwitches()
{
    QFETCH(QString, chrome);
    QFETCH(QString, text);
    QFETCH(QStringList, chromeGets);
    QFETCH(QStringList, defaultBrowserGets);
    QFETCH(QString, trace);
    QFile::remove(m_home.path() + u"/chrome.log");
    QFile::remove(m_home.path() + u"/default.log");
    SystemWorkspace workspace(chrome);
    Preferences preferences(m_home.configHome() + u"/chrome.conf"); // Chrome is the default choice
    SystemClipboard clipboard;
    CallsManager manager(workspace, preferences, clipboard);
    Trace::Capture capture;
    manager.openTelco(text, [](const CallResult &) {});
    QTRY_VERIFY2(capture.lines().contains(trace), qPrintable(capture.lines().join(u'\n')));
    QTRY_COMPARE(m_home.lines(u"chrome.log"_qs), chromeGets);
    QTRY_COMPARE(m_home.lines(u"default.log"_qs), defaultBrowserGets);
}

QTEST_GUILESS_MAIN(tst_ChromeLaunch)
#include "tst_ChromeLaunch.moc"
