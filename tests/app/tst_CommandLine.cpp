// The command line end to end: the real telverra binary with a temporary home whose desktop handler for phone calls,
// messages, mail and the web records what it is asked to open, and no session bus (so commands run in the process
// itself).
#include "support/TestHome.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

namespace {
struct Run
{
    int status = -1;
    QString out;
    QString err;
};
} // namespace

class tst_CommandLine : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void commands_data();
    void commands();
    void historyHoldsTheLaunches();
    void contactsAndSearch();
    void forwardedToRunningWindow();
    void chromeFromDeploymentSettings();

private:
    Run telverra(const QStringList &arguments);
    QStringList opened() const { return m_home.lines(m_log); }

    TestHome m_home;
    QString m_log;
};

void tst_CommandLine::initTestCase()
{
    m_log = m_home.path() + u"/opened.log";
    QVERIFY(m_home.registerRecordingHandler({u"tel"_qs, u"sms"_qs, u"mailto"_qs, u"https"_qs}, m_log));
    // The default browser (the recording handler), whatever browsers this machine has.
    m_home.writeFile(u".config/telverra/telverra.conf"_qs, "[General]\nuseChromeAsDefaultBrowser=false\n");
    m_home.writeFile(u".local/share/contacts/people/ana.vcf"_qs,
                     "BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\n"
                     "EMAIL:ana@example.org\nEND:VCARD\n");
    m_home.writeFile(u".local/share/contacts/people/bob.vcf"_qs,
                     "BEGIN:VCARD\nUID:bob\nN:Smith;Bob;;;\nTEL:+1 555 0100\nEND:VCARD\n");
}

Run tst_CommandLine::telverra(const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &display : {u"DISPLAY"_qs, u"WAYLAND_DISPLAY"_qs, u"QT_QPA_PLATFORM"_qs}) {
        environment.remove(display); // as over ssh: the commands need none
    }
    environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_qs, u"unix:path=/nonexistent"_qs);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(TELVERRA_EXECUTABLE), arguments);
    if (!process.waitForFinished(30000)) {
        process.kill();
        return {};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void tst_CommandLine::commands_data()
{
    QTest::addColumn<QString>("arguments"); // split at "|"
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("opens");  // what the handler receives, or nothing
    QTest::addColumn<QString>("output"); // a line standard output must hold
    QTest::addColumn<QString>("error");  // a text standard error must hold

    QTest::newRow("call") << u"call|+34 600-111.222"_qs << 0 << u"tel:+34600111222"_qs
                          << u"call launced with number: +34 600-111.222"_qs << QString();
    QTest::newRow("message") << u"message|600 12 34"_qs << 0 << u"sms:6001234"_qs
                             << u"text sent with number: 600 12 34"_qs << QString();
    QTest::newRow("mail") << u"mail|ana@example.org"_qs << 0 << u"mailto:ana@example.org"_qs
                          << u"call launced with number: ana@example.org"_qs << QString();
    QTest::newRow("facetime-audio, no application") << u"facetime-audio|600-1"_qs << 1 << QString() << QString()
                                                    << u"No application on this computer opens FaceTime calls"_qs;
    QTest::newRow("open a meeting") << u"open|https://meet.jit.si/Standup"_qs << 0 << u"https://meet.jit.si/Standup"_qs
                                    << u"Openning URL From Clipboard: https://meet.jit.si/Standup"_qs << QString();
    QTest::newRow("destination starting with a dash")
        << u"call|--|-600"_qs << 0 << u"tel:600"_qs << QString() << QString();
    QTest::newRow("not a number") << u"call|(600) 123"_qs << 1 << QString()
                                  << u"make call button pressed with: (600) 123"_qs
                                  << u"Not a number that can be called: (600) 123"_qs;
    QTest::newRow("attachment refused") << u"mail|bob@example.com?attach=/etc/passwd"_qs << 1 << QString() << QString()
                                        << u"Error Creating call in Workspace with number: Error creating eMail: "
                                           u"bob@example.com?attach=/etc/passwd"_qs;
    QTest::newRow("unknown meeting") << u"open|https://example.com/x"_qs << 1 << QString() << QString()
                                     << u"Telco not supported: Attempt to open Telco of type: "
                                        u"'https://example.com/x'"_qs;
    QTest::newRow("javascript in a link") << u"open|javascript:alert(1)//https://zoom.us/j/1"_qs << 0 << QString()
                                          << u"Error creating URL for Default Browser"_qs << QString();
    QTest::newRow("unknown command") << u"dial|600"_qs << 2 << QString() << QString() << u"unknown command dial"_qs;
    QTest::newRow("missing destination") << u"call"_qs << 2 << QString() << QString()
                                         << u"call takes one destination"_qs;
    QTest::newRow("version") << u"--version"_qs << 0 << QString() << u"Telverra " TELVERRA_VERSION ""_qs << QString();
    QTest::newRow("a window without a display")
        << QString() << 1 << QString() << QString() << u"no display to show the window on"_qs;
    QTest::newRow("json on a launch") << u"call|600|--json"_qs << 2 << QString() << QString()
                                      << u"--json and --search go with"_qs;
}

void tst_CommandLine::commands()
{
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QString, opens);
    QFETCH(QString, output);
    QFETCH(QString, error);
    const QStringList before = opened();
    const Run run = telverra(arguments.split(u'|', Qt::SkipEmptyParts));
    QCOMPARE(run.status, status);
    if (!output.isEmpty()) {
        QVERIFY2(run.out.split(u'\n').contains(output), qPrintable(run.out));
    }
    if (!error.isEmpty()) {
        QVERIFY2(run.err.contains(error), qPrintable(run.err));
    }
    // The handler runs detached: wait for what it is asked to open. What a refused launch opened by mistake would
    // still show up in a later row's log.
    QTRY_COMPARE(opened().mid(before.size()), opens.isEmpty() ? QStringList() : QStringList{opens});
}

void tst_CommandLine::historyHoldsTheLaunches()
{
    const Run run = telverra({u"recents"_qs, u"--json"_qs});
    QCOMPARE(run.status, 0);
    const QJsonArray records = QJsonDocument::fromJson(run.out.toUtf8()).array();
    QStringList kinds;
    for (const QJsonValue &record : records) {
        kinds.append(record[u"callType"_qs].toString() + u' ' + record[u"destinationValue"_qs].toString());
    }
    // Newest first; the meeting with a javascript: link was refused by the browser gate but is recorded, as the
    // launcher reports it opened; the FaceTime call that no application opened is not.
    QCOMPARE(kinds.mid(0, 6), (QStringList{u"zoom javascript:alert(1)//https://zoom.us/j/1"_qs, u"telephone -600"_qs,
                                           u"jitsi https://meet.jit.si/Standup"_qs, u"mail ana@example.org"_qs,
                                           u"messages 600 12 34"_qs, u"telephone +34 600-111.222"_qs}));
    QCOMPARE(records.last()[u"contactID"_qs].toString(), u"ana"_qs); // the call found Ana by her number
    QCOMPARE(records.last()[u"destinationTag"_qs].toString(), u"mobile"_qs);

    const Run search = telverra({u"recents"_qs, u"--search"_qs, u"MEET"_qs});
    QCOMPARE(search.status, 0);
    QCOMPARE(search.out.count(u'\n'), 1);
    QVERIFY(search.out.contains(u"https://meet.jit.si/Standup"_qs));
}

void tst_CommandLine::contactsAndSearch()
{
    const Run help = telverra({u"--help"_qs});
    QCOMPARE(help.status, 0);
    for (const char *command : {"call NUMBER", "message", "mail ADDRESS", "facetime-audio", "open URL", "meet",
                                "recents [--search TEXT] [--json]", "favorites [--json]", "contacts"}) {
        QVERIFY2(help.out.contains(QLatin1StringView(command)), command);
    }
    const Run all = telverra({u"contacts"_qs});
    QCOMPARE(all.status, 0);
    QCOMPARE(all.out, u"Ana García\t+34 600 111 222, ana@example.org\nBob Smith\t+1 555 0100\n"_qs);
    const Run found = telverra({u"contacts"_qs, u"--search"_qs, u"garcia"_qs, u"--json"_qs});
    const QJsonArray contacts = QJsonDocument::fromJson(found.out.toUtf8()).array();
    QCOMPARE(contacts.size(), 1);
    QCOMPARE(contacts.at(0)[u"id"_qs].toString(), u"ana"_qs);
    QCOMPARE(contacts.at(0)[u"phoneNumbers"_qs][0][u"label"_qs].toString(), u"mobile"_qs);
    const Run favorites = telverra({u"favorites"_qs, u"--json"_qs});
    QCOMPARE(favorites.status, 0);
    QVERIFY(QJsonDocument::fromJson(favorites.out.toUtf8()).object().contains(u"telcos"_qs));
}

// With a window running on the session bus, a launch from the command line is made by the window (its history
// updates at once), not by the command's own process.
void tst_CommandLine::forwardedToRunningWindow()
{
    if (QStandardPaths::findExecutable(u"dbus-run-session"_qs).isEmpty() ||
        QStandardPaths::findExecutable(u"dbus-send"_qs).isEmpty() ||
        QStandardPaths::findExecutable(u"gdbus"_qs).isEmpty()) {
        QSKIP("dbus-run-session or gdbus is not installed (packages dbus-daemon, libglib2.0-bin)");
    }
    const QString script = QStringLiteral(R"(
"$TELVERRA" > "$WORK/window.out" 2>&1 &
window=$!
# As long as a loaded machine needs to start it; the command below must find it running.
for i in $(seq 900); do
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner         string:org.telverra.Telverra 2>/dev/null | grep -q 'boolean true' && break
    sleep 0.1
done
"$TELVERRA" call 700-1 > "$WORK/command.out" 2>&1
echo $? > "$WORK/command.status"
# A launch the window cannot make: its message and status come back here.
"$TELVERRA" facetime 700-2 > "$WORK/failed.out" 2>&1
echo $? > "$WORK/failed.status"
# A second start, with a desktop action: the first window runs it and no second one opens.
"$TELVERRA" --action new-meet > "$WORK/second.out" 2>&1
echo $? > "$WORK/second.status"
app="--session --dest org.telverra.Telverra --object-path /org/telverra/Telverra --method org.freedesktop.Application"
gdbus call $app.Activate "{}" > "$WORK/activate.out" 2>&1
gdbus call $app.Open "['file:///etc/passwd']" "{}" > "$WORK/open.out" 2>&1
gdbus call $app.ActivateAction "'format-disk'" "[]" "{}" >> "$WORK/open.out" 2>&1
kill $window
wait $window
)");
    QProcess session;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_qs, u"offscreen"_qs);
    environment.insert(u"TELVERRA"_qs, QStringLiteral(TELVERRA_EXECUTABLE));
    environment.insert(u"WORK"_qs, m_home.path());
    session.setProcessEnvironment(environment);
    const QStringList before = opened();
    session.start(u"dbus-run-session"_qs, {u"--"_qs, u"sh"_qs, u"-c"_qs, script});
    QVERIFY(session.waitForFinished(150000));
    auto read = [this](const QString &name) { return m_home.read(name); };
    QCOMPARE(read(u"command.status"_qs).trimmed(), u"0"_qs);
    QVERIFY2(read(u"window.out"_qs).contains(u"call launced with number: 700-1"_qs),
             qPrintable(read(u"window.out"_qs)));
    QVERIFY2(!read(u"command.out"_qs).contains(u"make call button pressed"_qs), "not run by the command itself");
    QCOMPARE(read(u"failed.status"_qs).trimmed(), u"1"_qs);
    QVERIFY2(read(u"failed.out"_qs).contains(u"No application on this computer opens FaceTime calls"_qs),
             qPrintable(read(u"failed.out"_qs)));
    QVERIFY(read(u"window.out"_qs).contains(u"send button of type facetime for contact: "_qs));
    QCOMPARE(read(u"second.status"_qs).trimmed(), u"0"_qs);
    QVERIFY(read(u"window.out"_qs).contains(u"make call in browser button pressed with: googleMeetNew"_qs));
    QVERIFY2(read(u"activate.out"_qs).trimmed() == u"()", qPrintable(read(u"activate.out"_qs)));
    const QString refused = read(u"open.out"_qs);
    QVERIFY2(refused.contains(u"org.freedesktop.DBus.Error.NotSupported"_qs) &&
                 refused.contains(u"org.freedesktop.DBus.Error.InvalidArgs"_qs),
             qPrintable(refused));
    QTRY_COMPARE(opened().mid(before.size()), (QStringList{u"tel:7001"_qs, u"https://meet.google.com/new"_qs}));
}

// Info.ini names the Chrome to start; with Chrome chosen in the preferences, the meeting opens there with "--".
void tst_CommandLine::chromeFromDeploymentSettings()
{
    const QString chrome = m_home.writeRecorder(u"opt/chrome"_qs, u"chrome.log"_qs);
    const QString info =
        m_home.writeFile(u"Info.ini"_qs, "[General]\nCHROME_EXECUTABLE=" + QFile::encodeName(chrome) + "\n");
    m_home.writeFile(u".config/telverra/telverra.conf"_qs, "[General]\nuseChromeAsDefaultBrowser=true\n");
    const Run run = telverra({u"--info"_qs, info, u"open"_qs, u"https://meet.jit.si/Chrome"_qs});
    m_home.writeFile(u".config/telverra/telverra.conf"_qs, "[General]\nuseChromeAsDefaultBrowser=false\n");
    QCOMPARE(run.status, 0);
    QVERIFY2(run.out.contains(u"Successfully openned URL https://meet.jit.si/Chrome call in chrome"_qs),
             qPrintable(run.out));
    QTRY_COMPARE(m_home.lines(u"chrome.log"_qs), (QStringList{u"--"_qs, u"https://meet.jit.si/Chrome"_qs})); // detached
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_CommandLine.moc"
