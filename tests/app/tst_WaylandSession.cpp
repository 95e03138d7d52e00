// The window in a Wayland session: GNOME's compositor (mutter) nested in the X server the test runs under, wl-clipboard
// as the other program that copies, a launcher that hands out activation tokens, and a phone handler found in a
// temporary XDG home that records the addresses it receives.
#include "support/TestHome.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

#include <memory>
#include <optional>

namespace {

const QString launchedNumber = QStringLiteral("+34600123456");

QString digits(QString text)
{
    return text.remove(QRegularExpression(u"\\D"_qs));
}

} // namespace

class tst_WaylandSession : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void callFromClipboardDialsWhatTheDesktopHolds_data();
    void callFromClipboardDialsWhatTheDesktopHolds();

private:
    // Runs a program of the session to its end; its standard output, nothing when it failed.
    std::optional<QString> run(const QString &program, const QStringList &arguments, const QByteArray &input = {},
                               const QString &token = {});
    QStringList dialled() const { return m_home.lines(u"dialled.log"_qs); }
    QString windowLog() const { return m_home.read(u"window.err"_qs); }

    TestHome m_home;
    QProcessEnvironment m_session;
    std::unique_ptr<QProcess> m_compositor;
    std::unique_ptr<QProcess> m_window;
};

void tst_WaylandSession::initTestCase()
{
    if (QStandardPaths::findExecutable(u"mutter"_qs).isEmpty()) {
        QSKIP("GNOME's compositor is not installed (package mutter)");
    }
    QVERIFY2(!QStandardPaths::findExecutable(u"wl-copy"_qs).isEmpty(), "wl-clipboard is not installed");
    QVERIFY2(!qEnvironmentVariableIsEmpty("DISPLAY"), "run under an X server (xvfb-run): mutter nests in it");

    // The phone handler: what the desktop's lookup finds for tel: in this home.
    for (const char *name : {"XDG_CURRENT_DESKTOP", "DESKTOP_SESSION", "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
        qunsetenv(name);
    }
    QVERIFY(m_home.registerRecordingHandler({u"tel"_qs}, m_home.path() + u"/dialled.log"));

    const QString socket = u"telverra-test-"_qs + QString::number(QCoreApplication::applicationPid());
    m_session = QProcessEnvironment::systemEnvironment();
    m_session.insert(u"WAYLAND_DISPLAY"_qs, socket);
    m_session.insert(u"QT_QPA_PLATFORM"_qs, u"wayland"_qs);
    m_session.insert(u"MUTTER_DEBUG_DUMMY_MODE_SPECS"_qs, u"1280x800"_qs);

    m_compositor = std::make_unique<QProcess>();
    m_compositor->setProcessEnvironment(m_session);
    m_compositor->setStandardOutputFile(m_home.path() + u"/mutter.log");
    m_compositor->setStandardErrorFile(m_home.path() + u"/mutter.log");
    m_compositor->start(u"mutter"_qs,
                        {u"--nested"_qs, u"--wayland"_qs, u"--no-x11"_qs, u"--wayland-display"_qs, socket});
    QVERIFY(m_compositor->waitForStarted());
    const QString socketPath = qEnvironmentVariable("XDG_RUNTIME_DIR") + u'/' + socket;
    QTRY_VERIFY2_WITH_TIMEOUT(QFile::exists(socketPath), qPrintable(m_home.read(u"mutter.log"_qs)), 60000);

    // The window, which reports its Wayland traffic: the focus it gains and the activations it asks for.
    m_window = std::make_unique<QProcess>();
    QProcessEnvironment window = m_session;
    window.insert(u"WAYLAND_DEBUG"_qs, u"1"_qs);
    m_window->setProcessEnvironment(window);
    m_window->setStandardOutputFile(m_home.path() + u"/window.out");
    m_window->setStandardErrorFile(m_home.path() + u"/window.err");
    m_window->start(QStringLiteral(TELVERRA_EXECUTABLE), {});
    QVERIFY(m_window->waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(
        QDBusConnection::sessionBus().interface()->isServiceRegistered(u"org.telverra.Telverra"_qs).value(), 60000);
    QTRY_VERIFY_WITH_TIMEOUT(windowLog().contains(QRegularExpression(u"wl_keyboard@\\d+\\.enter\\("_qs)), 60000);
}

void tst_WaylandSession::cleanupTestCase()
{
    for (QProcess *process : {m_window.get(), m_compositor.get()}) {
        if (process && process->state() != QProcess::NotRunning) {
            process->terminate();
            process->waitForFinished(10000);
        }
    }
}

std::optional<QString> tst_WaylandSession::run(const QString &program, const QStringList &arguments,
                                               const QByteArray &input, const QString &token)
{
    QProcess process;
    QProcessEnvironment environment = m_session;
    if (!token.isEmpty()) {
        environment.insert(u"XDG_ACTIVATION_TOKEN"_qs, token);
    }
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        qWarning() << program << arguments << "failed:" << process.readAllStandardError();
        return std::nullopt;
    }
    return QString::fromUtf8(process.readAllStandardOutput());
}

void tst_WaylandSession::callFromClipboardDialsWhatTheDesktopHolds_data()
{
    QTest::addColumn<QString>("copied");
    QTest::addColumn<bool>("behind");
    QTest::addColumn<bool>("withToken");

    QTest::newRow("window in front") << u"+34 611 222 333"_qs << false << false;
    QTest::newRow("window behind, started with a token") << u"+34 622 333 444"_qs << true << true;
    QTest::newRow("window behind, no token: told, nothing dialled") << u"+34 633 444 555"_qs << true << false;
}

// Another program copies a number, a launch reaches the window from outside (its copy of the launched number cannot
// reach the desktop's clipboard: the window was not used), then "call from clipboard" comes from outside: the window
// dials the number the desktop's clipboard holds, or, when it cannot come to the front to read it, dials nothing and
// says why.
void tst_WaylandSession::callFromClipboardDialsWhatTheDesktopHolds()
{
    QFETCH(QString, copied);
    QFETCH(bool, behind);
    QFETCH(bool, withToken);

    QVERIFY(run(u"wl-copy"_qs, {}, copied.toUtf8()));
    QCOMPARE(run(u"wl-paste"_qs, {u"--no-newline"_qs}), copied);
    const qsizetype before = dialled().size();
    QVERIFY(run(QStringLiteral(TELVERRA_EXECUTABLE), {u"call"_qs, launchedNumber}));
    QTRY_COMPARE_WITH_TIMEOUT(dialled().size(), before + 1, 30000);
    QCOMPARE(digits(dialled().constLast()), digits(launchedNumber));

    QProcess launcher;
    QString token;
    if (behind) {
        const qsizetype logBefore = windowLog().size();
        launcher.setProcessEnvironment(m_session);
        launcher.start(QStringLiteral(ACTIVATION_LAUNCHER), {});
        QVERIFY(launcher.waitForStarted());
        QTRY_VERIFY_WITH_TIMEOUT(launcher.canReadLine() || launcher.state() == QProcess::NotRunning, 30000);
        const QString line = QString::fromUtf8(launcher.readLine()).trimmed();
        QVERIFY2(line.startsWith(u"token "), qPrintable(line + QString::fromUtf8(launcher.readAllStandardError())));
        token = line.sliced(6);
        // The window has seen the focus go (a window that believes it still has it reads the clipboard at once).
        QTRY_VERIFY_WITH_TIMEOUT(
            windowLog().sliced(logBefore).contains(QRegularExpression(u"wl_keyboard@\\d+\\.leave\\("_qs)), 30000);
    }
    const QString windowOutput = m_home.path() + u"/window.out";
    const qsizetype outputBefore = m_home.read(windowOutput).size();
    QVERIFY(run(QStringLiteral(TELVERRA_EXECUTABLE), {u"--action"_qs, u"call-from-clipboard"_qs}, {},
                withToken ? token : QString()));

    if (!behind || withToken) {
        QTRY_COMPARE_WITH_TIMEOUT(dialled().size(), before + 2, 30000);
        QCOMPARE(digits(dialled().constLast()), digits(copied));
        if (withToken) {
            // The window asked for the focus with the launcher's token, and took it from the launcher.
            QVERIFY(windowLog().contains(u"activate(\"" + token + u"\", wl_surface@"));
            QTRY_VERIFY_WITH_TIMEOUT(launcher.canReadLine(), 30000);
            QCOMPARE(launcher.readLine().trimmed(), QByteArray("left"));
        }
    } else {
        QTRY_VERIFY2_WITH_TIMEOUT(m_home.read(windowOutput)
                                      .sliced(outputBefore)
                                      .contains(u"can read the clipboard only while its window is in front"_qs),
                                  qPrintable(m_home.read(windowOutput).sliced(outputBefore)), 30000);
        QCOMPARE(dialled().size(), before + 1);
    }
    // Nothing of the window's own overwrote what the other program copied.
    QCOMPARE(run(u"wl-paste"_qs, {u"--no-newline"_qs}), copied);
    if (launcher.state() != QProcess::NotRunning) {
        launcher.kill();
        launcher.waitForFinished();
    }
}

QTEST_GUILESS_MAIN(tst_WaylandSession)
#include "tst_WaylandSession.moc"
