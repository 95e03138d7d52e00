// The desktop's handler look-up and launch, for real: a desktop file and a mimeapps.list in a temporary XDG home name a
// recording handler, GIO finds it and starts it. GIO reads the XDG folders once per process, so each row of the table
// runs the telverra command in a home of its own; the window's path runs in this process.
#include "app/HomeWindowViewModel.h"
#include "calls/CallsManager.h"
#include "calls/Workspace.h"
#include "recents/RecentCallsDataService.h"
#include "settings/QuickActionHandlers.h"
#include "support/TestHome.h"
#include "support/ViewModelFixture.h"

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

class tst_DesktopHandlers : public QObject
{
    Q_OBJECT
public:
    // Only the homes' applications, in this process and the commands it starts: none of the machine's own handlers
    // (its browsers, mail clients) take part. The window's test registers its handler before anything asks GIO.
    static void initMain()
    {
        qputenv("XDG_DATA_DIRS", "/nonexistent/share");
        qputenv("XDG_CONFIG_DIRS", "/nonexistent/etc");
        qunsetenv("XDG_CURRENT_DESKTOP");
    }

private Q_SLOTS:
    void launches_data();
    void launches();
    void windowShowsTheMessage();
};

void tst_DesktopHandlers::launches_data()
{
    QTest::addColumn<QStringList>("handled"); // schemes the recording handler is registered for
    QTest::addColumn<bool>("startable");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("received"); // what the handler is started with; empty: the launch fails
    QTest::addColumn<QString>("error");    // what standard error holds then

    const QStringList all = {u"tel"_qs, u"sms"_qs, u"mailto"_qs};
    QTest::newRow("phone call") << all << true << QStringList{u"call"_qs, u"+34 600-12.34/56"_qs}
                                << u"tel:+34600123456"_qs << QString();
    QTest::newRow("mail") << all << true << QStringList{u"mail"_qs, u"bob@example.com?subject=Hello%20Bob"_qs}
                          << u"mailto:bob@example.com?subject=Hello%20Bob"_qs << QString();
    QTest::newRow("phone call, no handler")
        << QStringList{u"sms"_qs, u"mailto"_qs} << true << QStringList{u"call"_qs, u"+34 600 123 456"_qs} << QString()
        << u"No application on this computer opens phone calls (tel: addresses). Install KDE Connect to call through "
           u"your phone, or GNOME Calls."_qs;
    QTest::newRow("message, no handler") << QStringList() << true << QStringList{u"message"_qs, u"600 12 34"_qs}
                                         << QString()
                                         << u"No application on this computer sends text messages (sms: addresses)."_qs;
    QTest::newRow("mail, no handler") << QStringList() << true << QStringList{u"mail"_qs, u"bob@example.com"_qs}
                                      << QString()
                                      << u"No application on this computer writes e-mails (mailto: addresses)."_qs;
    QTest::newRow("FaceTime, which nothing here registers")
        << all << true << QStringList{u"facetime"_qs, u"600 12 34"_qs} << QString()
        << u"No application on this computer opens FaceTime calls"_qs;
    QTest::newRow("handler that cannot start")
        << all << false << QStringList{u"call"_qs, u"600"_qs} << QString()
        << u"Recorder could not be started to open the address: Unable to find terminal required for application"_qs;
}

void tst_DesktopHandlers::launches()
{
    QFETCH(QStringList, handled);
    QFETCH(bool, startable);
    QFETCH(QStringList, arguments);
    QFETCH(QString, received);
    QFETCH(QString, error);

    TestHome home;
    const QString handlerLog = home.path() + u"/received.log";
    QVERIFY(home.registerRecordingHandler(handled, handlerLog, startable));
    // The browsers xdg-open falls back to: none of them may be reached.
    const QString browserLog = home.path() + u"/browser.log";
    QString browser;
    for (const char *name : {"xdg-open", "x-www-browser", "sensible-browser", "firefox", "chromium"}) {
        browser = home.writeScript(u"bin/"_qs + QLatin1StringView(name),
                                   "#!/bin/sh\nprintf '%s\\n' \"$*\" >> \"" + QFile::encodeName(browserLog) + "\"\n");
        QVERIFY(!browser.isEmpty());
    }
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_qs, home.path() + u"/bin"); // the stand-ins only, and no terminal
    environment.insert(u"BROWSER"_qs, browser);
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_qs, u"unix:path=/nonexistent"_qs); // no window to hand it to
    auto run = [&environment](const QStringList &commandLine) {
        QProcess process;
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(TELVERRA_EXECUTABLE), commandLine);
        process.waitForFinished(30000);
        return std::pair<int, QString>(process.exitCode(), QString::fromUtf8(process.readAllStandardError()) +
                                                               QString::fromUtf8(process.readAllStandardOutput()));
    };

    const auto [status, output] = run(arguments);
    const auto [listed, history] = run({u"recents"_qs, u"--json"_qs});
    QCOMPARE(listed, 0);
    const qsizetype records = QJsonDocument::fromJson(history.toUtf8()).array().size();
    if (received.isEmpty()) {
        QVERIFY2(status == 1 && output.contains(error), qPrintable(output));
        QCOMPARE(records, 0);
        QTest::qWait(300); // a browser started in the background would have written by now
        QCOMPARE(home.lines(handlerLog), QStringList());
    } else {
        QVERIFY2(status == 0, qPrintable(output));
        QCOMPARE(records, 1);
        QTRY_COMPARE_WITH_TIMEOUT(home.lines(handlerLog), QStringList{received}, 20000);
    }
    QCOMPARE(home.lines(browserLog), QStringList());
}

// The window's path, in this process: the alert's text, nothing recorded, nothing copied; and the settings' line of
// each kind.
void tst_DesktopHandlers::windowShowsTheMessage()
{
    ViewModelFixture fixture{QByteArray()};
    QVERIFY(fixture.home.registerRecordingHandler({u"sms"_qs}, fixture.home.path() + u"/received.log"));
    SystemWorkspace workspace;
    CallsManager calls(workspace, *fixture.preferences, fixture.clipboard);
    fixture.environment.callsManager = &calls;
    fixture.environment.headless = true;
    HomeWindowViewModel &viewModel = fixture.makeViewModel();
    QGuiApplication::clipboard()->setText(u"untouched"_qs);
    QSignalSpy published(&viewModel, &HomeWindowViewModel::callManagerErrorPublished);

    viewModel.validateDialerDisplay(u"+34 600 123 456"_qs);
    viewModel.makeCallFromDialer();
    QCOMPARE(published.size(), 1);
    QCOMPARE(viewModel.callManagerErrorMessage(), CallsManager::noApplicationMessage(CallTypes::telephone));
    viewModel.recentCallsDataService().fetchRecentCalls();
    QVERIFY(viewModel.recentCallsDataService().savedRecents().isEmpty());
    QCOMPARE(QGuiApplication::clipboard()->text(), u"untouched"_qs);
    QCOMPARE(viewModel.dialer().display, u"+34 600 123 456"_qs); // left as typed, to try again

    QuickActionHandlers handlers;
    handlers.setCallsManager(&calls);
    auto shown = [&handlers](const char *kind) -> QString {
        const QVariantMap handler = handlers.handlers().value(QString::fromLatin1(kind)).toMap();
        return handler.value(u"state"_qs).toString() + u' ' + handler.value(u"name"_qs).toString();
    };
    QCOMPARE(shown("telephone"), u"none "_qs);
    QCOMPARE(shown("messages"), u"application Recorder"_qs);
    QCOMPARE(shown("facetime-audio"), u"none "_qs);
}

QTEST_MAIN(tst_DesktopHandlers)
#include "tst_DesktopHandlers.moc"
