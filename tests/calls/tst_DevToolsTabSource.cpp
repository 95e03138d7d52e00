// The DevTools tab source against a real headless Chromium, started by the test with its own profile and debugging
// port, showing a page on 127.0.0.1 titled like a new Google Meet meeting.
#include "calls/CallsManager.h"
#include "calls/Clipboard.h"
#include "calls/DevToolsTabSource.h"
#include "common/Trace.h"
#include "settings/Preferences.h"
#include "support/LoopbackHttpServer.h"
#include "support/RecordingWorkspace.h"
#include "support/TestHome.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

class tst_DevToolsTabSource : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void noBrowserAnswersNothing();
    void newMeetingFoundInTheTabs();

private:
    TestHome m_home;
    LoopbackHttpServer m_server;
    QTemporaryDir m_profile;
    QProcess m_chromium;
};

void tst_DevToolsTabSource::initTestCase()
{
    QVERIFY(m_server.listen());
    m_server.setResponse(u"/meeting"_qs, 200, "text/html",
                         "<!doctype html><html><head><title>Meet - ~new</title></head><body>meeting</body></html>");
    m_server.setResponse(u"/other"_qs, 200, "text/html", "<html><head><title>Inbox</title></head></html>");
}

void tst_DevToolsTabSource::cleanupTestCase()
{
    if (m_chromium.state() != QProcess::NotRunning) {
        m_chromium.kill();
        m_chromium.waitForFinished();
    }
}

void tst_DevToolsTabSource::noBrowserAnswersNothing()
{
    QTemporaryDir empty;
    DevToolsTabSource source(0, {empty.path()});
    QVERIFY(!source.run(CallsManager::myAppleScriptChrome, true));
    DevToolsTabSource closedPort(1, {});
    QVERIFY(!closedPort.run(CallsManager::myAppleScriptChrome, true));
    QVERIFY2(!DevToolsTabSource(9, {}).run(CallsManager::myAppleScriptSafari, false), "only asked for Chrome");
}

// The tabs, grouped by window, and then the new meeting's address found among them.
void tst_DevToolsTabSource::newMeetingFoundInTheTabs()
{
    const QString chromium = QStandardPaths::findExecutable(u"chromium"_qs);
    if (chromium.isEmpty()) {
        QSKIP("chromium is not installed (package chromium): the DevTools source cannot be exercised here");
    }
    m_chromium.setProgram(chromium);
    m_chromium.setArguments(
        {u"--headless"_qs, u"--no-sandbox"_qs, u"--disable-gpu"_qs, u"--disable-quic"_qs, u"--no-first-run"_qs,
         u"--disable-background-networking"_qs, u"--disable-component-update"_qs, u"--disable-sync"_qs,
         u"--user-data-dir="_qs + m_profile.path(), u"--remote-debugging-port=0"_qs, m_server.baseUrl() + u"/meeting"});
    m_chromium.start();
    QVERIFY(m_chromium.waitForStarted());
    // Chromium writes the port file while it starts: only a whole first line holds the port.
    auto activePort = [this]() -> QByteArray {
        QFile portFile(m_profile.path() + u"/DevToolsActivePort");
        if (!portFile.open(QIODevice::ReadOnly)) {
            return {};
        }
        const QByteArray line = portFile.readLine();
        bool number = false;
        return line.endsWith('\n') && line.trimmed().toInt(&number) > 0 && number ? line.trimmed() : QByteArray();
    };
    QTRY_VERIFY2_WITH_TIMEOUT(!activePort().isEmpty(), m_chromium.readAllStandardError().right(2000).constData(),
                              30000);

    // Headless Chromium takes one address at start; a second tab is opened through DevTools, asked again while a
    // busy machine has it not yet listening.
    const QByteArray port = activePort();
    QNetworkAccessManager network;
    const QUrl newTab(u"http://127.0.0.1:"_qs + QString::fromLatin1(port) + u"/json/new?" + m_server.baseUrl() +
                      u"/other");
    QNetworkReply *opened = nullptr;
    QDeadlineTimer deadline(20000);
    do {
        delete opened;
        opened = network.put(QNetworkRequest(newTab), QByteArray());
        QTRY_VERIFY_WITH_TIMEOUT(opened->isFinished(), 10000);
        if (opened->error() == QNetworkReply::ConnectionRefusedError) {
            QTest::qWait(200);
        }
    } while (opened->error() == QNetworkReply::ConnectionRefusedError && !deadline.hasExpired());
    QCOMPARE(opened->error(), QNetworkReply::NoError);
    delete opened;

    DevToolsTabSource source(0, {m_profile.path()});
    auto titles = [&source] {
        QStringList seen;
        if (const std::optional<ScriptValue> answer = source.run(CallsManager::myAppleScriptChrome, true)) {
            for (const BrowserWindow &window : CallsManager::browserWindows(*answer)) {
                for (const Tab &tab : window.tabs) {
                    seen.append(window.name.left(11) + u'|' + tab.title + u'|' + tab.url);
                }
            }
        }
        seen.sort();
        return seen;
    };
    // The pages may still be loading: ask until both titles are in. Every tab carries its window's id.
    QTRY_COMPARE_WITH_TIMEOUT(titles(),
                              (QStringList{u"Window ID: |Inbox|"_qs + m_server.baseUrl() + u"/other",
                                           u"Window ID: |Meet - ~new|"_qs + m_server.baseUrl() + u"/meeting"}),
                              20000);

    Preferences preferences(m_home.configHome() + u"/telverra.conf");
    RecordingWorkspace workspace; // the new meeting's address is not opened again here
    SystemClipboard clipboard;
    CallsManager manager(workspace, preferences, clipboard);
    manager.setBrowserTabSource(&source);
    std::optional<CallResult> result;
    Trace::Capture capture;
    manager.startNewMeeting(CallTypes::googleMeetNew, [&](const CallResult &r) { result = r; });
    QCOMPARE(workspace.openedWithApplication, QStringList{u"Google Chrome|https://meet.google.com/new"_qs});
    QTRY_VERIFY_WITH_TIMEOUT(result.has_value(), 15000);
    QCOMPARE(*result, CallResult::success(m_server.baseUrl() + u"/meeting"));
    QVERIFY(capture.lines().contains(u"Chrome"_qs));
}

QTEST_MAIN(tst_DevToolsTabSource)
#include "tst_DevToolsTabSource.moc"
