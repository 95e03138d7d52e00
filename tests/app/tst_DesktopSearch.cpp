// The desktop's search over a private session bus: a client makes the calls KRunner and GNOME Shell make, against the
// search served by a view model over a real address book and store, and against a process the bus starts itself.
#include "app/DesktopSearch.h"
#include "contacts/ContactsDataService.h"
#include "favorites/FavoritesDataService.h"
#include "support/ViewModelFixture.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCall>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSettings>
#include <QStandardPaths>
#include <QTest>

#include <array>
#include <csignal>

namespace {

const QChar separator(0x1f);
const QString krunner = u"org.kde.krunner1"_qs;
const QString gnome = u"org.gnome.Shell.SearchProvider2"_qs;

} // namespace

class tst_DesktopSearch : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void krunnerMatches_data();
    void krunnerMatches();
    void gnomeResults();
    void launchesRecordTheirContact_data();
    void launchesRecordTheirContact();
    void badInput();
    void pluginFiles();
    void servedByAnActivatedProcess();

private:
    QDBusMessage call(const QString &path, const QString &interface, const QString &method,
                      const QVariantList &arguments);
    QList<RemoteMatch> match(const QString &query);

    std::unique_ptr<ViewModelFixture> m_app;
    HomeWindowViewModel *m_vm = nullptr;
    std::unique_ptr<DesktopSearch> m_search;
    QStringList m_windowSearches;
    QString m_service;
};

void tst_DesktopSearch::initTestCase()
{
    if (!QDBusConnection::sessionBus().isConnected()) {
        QSKIP("no session bus");
    }
    m_app = std::make_unique<ViewModelFixture>(
        "BEGIN:VCARD\nUID:ana\nN:García;Ana;;;\nTEL;TYPE=CELL:+34 600 111 222\nEMAIL;TYPE=WORK:ana@example.org\n"
        "END:VCARD\nBEGIN:VCARD\nUID:angel\nN:Ruiz;Ángel;;;\nTEL:+34 611 000 000\nEND:VCARD\n"
        "BEGIN:VCARD\nUID:anabel\nN:Ortiz;Anabel;;;\nEMAIL:anabel@example.org\nEND:VCARD\n"
        "BEGIN:VCARD\nUID:juana\nN:Pérez;Juana;;;\nTEL:+34 622 000 000\nEND:VCARD\n"
        "BEGIN:VCARD\nUID:3m\nORG:3M\nEND:VCARD\n");
    m_app->environment.headless = true;
    m_vm = &m_app->makeViewModel();
    QTRY_COMPARE(m_vm->allContacts().size(), 5);
    m_vm->favoritesDataService().addFavoriteTelco(u"Standup"_qs, u"zoom"_qs, u"https://zoom.us/j/5551234567"_qs);
    m_vm->favoritesDataService().fetchFavoriteTelcos();
    m_search = std::make_unique<DesktopSearch>(*m_vm, [this](const QString &text) { m_windowSearches.append(text); });
    QVERIFY(m_search->registerOn(QDBusConnection::sessionBus()));
    m_service = QDBusConnection::sessionBus().baseService();
}

void tst_DesktopSearch::cleanupTestCase()
{
    m_search.reset();
    m_app.reset();
}

// A call as the desktop's shell makes it, from a connection of its own; the events go on meanwhile, so that this
// process's search can answer.
QDBusMessage tst_DesktopSearch::call(const QString &path, const QString &interface, const QString &method,
                                     const QVariantList &arguments)
{
    QDBusConnection client = QDBusConnection::connectToBus(QDBusConnection::SessionBus, u"shell"_qs);
    QDBusMessage message = QDBusMessage::createMethodCall(m_service, path, interface, method);
    message.setArguments(arguments);
    return client.call(message, QDBus::BlockWithGui, 10000);
}

QList<RemoteMatch> tst_DesktopSearch::match(const QString &query)
{
    const QDBusMessage reply = call(QString::fromLatin1(KRunnerService::path), krunner, u"Match"_qs, {query});
    QList<RemoteMatch> matches;
    if (reply.type() == QDBusMessage::ReplyMessage) {
        reply.arguments().value(0).value<QDBusArgument>() >> matches;
    }
    return matches;
}

void tst_DesktopSearch::krunnerMatches_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QString>("firstSubtext");
    // Prefixes before parts of a name; within a grade, the address book's order.
    QTest::newRow("a first name") << u"ana"_qs << QStringList{u"Ana García"_qs, u"Anabel Ortiz"_qs, u"Juana Pérez"_qs}
                                  << u"mobile +34 600 111 222 · work ana@example.org"_qs;
    QTest::newRow("the whole name, exact first") << u"ana garcia"_qs << QStringList{u"Ana García"_qs} << QString();
    QTest::newRow("accents and case folded")
        << u"ÁNGEL"_qs << QStringList{u"Ángel Ruiz"_qs} << u"other +34 611 000 000"_qs;
    QTest::newRow("a number in another layout") << u"(600) 111-222"_qs << QStringList{u"Ana García"_qs} << QString();
    QTest::newRow("an address") << u"anabel@"_qs << QStringList{u"Anabel Ortiz"_qs} << u"other anabel@example.org"_qs;
    QTest::newRow("a saved link by name")
        << u"standup"_qs << QStringList{u"Standup (Zoom)"_qs} << u"https://zoom.us/j/5551234567"_qs;
    QTest::newRow("a saved link by address") << u"zoom.us/j"_qs << QStringList{u"Standup (Zoom)"_qs} << QString();
    QTest::newRow("nobody") << u"zzz"_qs << QStringList() << QString();
}

void tst_DesktopSearch::krunnerMatches()
{
    QFETCH(QString, query);
    QFETCH(QStringList, texts);
    QFETCH(QString, firstSubtext);
    const QList<RemoteMatch> matches = match(query);
    QStringList found;
    for (const RemoteMatch &m : matches) {
        found.append(m.text);
        QVERIFY(m.relevance > 0 && m.relevance <= 1);
    }
    QCOMPARE(found, texts);
    if (!firstSubtext.isEmpty()) {
        QCOMPARE(matches.first().properties.value(u"subtext"_qs).toString(), firstSubtext);
    }
    if (query == u"ana") {
        QCOMPARE(matches.first().properties.value(u"actions"_qs).toStringList(),
                 (QStringList{u"call"_qs, u"message"_qs, u"mail"_qs}));
        QCOMPARE(matches.first().iconName, u"call-start"_qs);
        QVERIFY(matches.first().relevance > matches.last().relevance);
    }
}

void tst_DesktopSearch::gnomeResults()
{
    const QString path = QString::fromLatin1(GnomeSearchProvider::path);
    const QStringList ids =
        call(path, gnome, u"GetInitialResultSet"_qs, {QStringList{u"ana"_qs}}).arguments().value(0).toStringList();
    const QDBusMessage reply = call(path, gnome, u"GetResultMetas"_qs, {ids});
    QList<QVariantMap> metas;
    reply.arguments().value(0).value<QDBusArgument>() >> metas;
    QStringList names;
    for (const QVariantMap &meta : metas) {
        names.append(meta.value(u"name"_qs).toString());
    }
    QCOMPARE(names,
             (QStringList{
                 u"Call Ana García (mobile +34 600 111 222)"_qs, u"Message Ana García (mobile +34 600 111 222)"_qs,
                 u"Mail Ana García (work ana@example.org)"_qs, u"Mail Anabel Ortiz (other anabel@example.org)"_qs,
                 u"Call Juana Pérez (other +34 622 000 000)"_qs, u"Message Juana Pérez (other +34 622 000 000)"_qs}));
    const QStringList sub = call(path, gnome, u"GetSubsearchResultSet"_qs, {ids, QStringList{u"ana"_qs, u"garc"_qs}})
                                .arguments()
                                .value(0)
                                .toStringList();
    QCOMPARE(sub.size(), 3);                    // Ana García's three
    QVERIFY(m_app->workspace.opened.isEmpty()); // searching launches nothing
    // "More results" opens the window's contacts screen on the search, its control characters dropped.
    call(path, gnome, u"LaunchSearch"_qs, {QStringList{u"ana"_qs, u"g\u0001"_qs}, 0u});
    QCOMPARE(m_windowSearches, QStringList{u"ana g"_qs});
}

void tst_DesktopSearch::launchesRecordTheirContact_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("launch"); // KRunner's action, or GNOME's result by its position
    QTest::addColumn<QString>("opened");
    QTest::addColumn<QString>("callType");
    QTest::addColumn<QString>("contactID");
    QTest::newRow("KRunner, the default action")
        << u"krunner"_qs << u"ana garcia"_qs << QString() << u"tel:+34600111222"_qs << u"telephone"_qs << u"ana"_qs;
    QTest::newRow("KRunner, message") << u"krunner"_qs << u"ana garcia"_qs << u"message"_qs << u"sms:+34600111222"_qs
                                      << u"messages"_qs << u"ana"_qs;
    QTest::newRow("KRunner, a link") << u"krunner"_qs << u"standup"_qs << QString()
                                     << u"https://zoom.us/j/5551234567"_qs << u"zoom"_qs << QString();
    QTest::newRow("GNOME, mail") << u"gnome"_qs << u"ana garcia"_qs << u"2"_qs << u"mailto:ana@example.org"_qs
                                 << u"mail"_qs << u"ana"_qs;
}

void tst_DesktopSearch::launchesRecordTheirContact()
{
    QFETCH(QString, host);
    QFETCH(QString, query);
    QFETCH(QString, launch);
    QFETCH(QString, opened);
    QFETCH(QString, callType);
    QFETCH(QString, contactID);
    m_app->workspace.opened.clear();
    const QList<RecentCallEntityPtr> before = m_vm->allRecentCalls();
    if (host == u"krunner") {
        const QList<RemoteMatch> matches = match(query);
        QVERIFY(!matches.isEmpty());
        call(QString::fromLatin1(KRunnerService::path), krunner, u"Run"_qs, {matches.first().id, launch});
    } else {
        const QString path = QString::fromLatin1(GnomeSearchProvider::path);
        const QStringList ids = call(path, gnome, u"GetInitialResultSet"_qs, {DesktopSearchIndex::terms(query)})
                                    .arguments()
                                    .value(0)
                                    .toStringList();
        call(path, gnome, u"ActivateResult"_qs, {ids.value(launch.toInt()), QStringList{query}, 0u});
    }
    QTRY_COMPARE(m_app->workspace.opened, QStringList{opened});
    QTRY_COMPARE(m_vm->allRecentCalls().size(), before.size() + 1); // read again after the record is saved
    // The new record (launches a millisecond apart may share their date, so it need not be the first).
    RecentCallEntityPtr newest;
    for (const RecentCallEntityPtr &record : m_vm->allRecentCalls()) {
        if (!before.contains(record)) {
            newest = record;
        }
    }
    QVERIFY(newest);
    QCOMPARE(newest->callType(), callType);
    QCOMPARE(newest->storedContactID().value_or(QString()), contactID);
}

void tst_DesktopSearch::badInput()
{
    m_app->workspace.opened.clear();
    const QString path = QString::fromLatin1(GnomeSearchProvider::path);
    QVERIFY(match(QString()).isEmpty());
    QVERIFY(match(u"\u0000\u202e \t\n"_qs).isEmpty());
    QVERIFY(match(QString(1024 * 1024, u'a')).size() <= DesktopSearchIndex::maximumResults);
    QVERIFY(match(QString(u"ana"_qs).repeated(100000)).isEmpty());
    QCOMPARE(call(path, gnome, u"GetInitialResultSet"_qs, {QStringList()}).arguments().value(0).toStringList(),
             QStringList());
    QStringList many(100000, u"a"_qs);
    QVERIFY(call(path, gnome, u"GetInitialResultSet"_qs, {many}).arguments().value(0).toStringList().size() <=
            DesktopSearchIndex::maximumResults);
    // Identifiers that name no launch launch nothing.
    const QString forged = QStringList{u"format"_qs, u"ana"_qs, u"x"_qs, u"/dev/sda"_qs, u"x"_qs}.join(separator);
    for (const QString &identifier : {QString(), u"call"_qs, forged, QString(64 * 1024, separator)}) {
        call(path, gnome, u"ActivateResult"_qs, {identifier, QStringList(), 0u});
        call(QString::fromLatin1(KRunnerService::path), krunner, u"Run"_qs, {identifier, u"call"_qs});
    }
    QCOMPARE(call(path, gnome, u"GetResultMetas"_qs, {QStringList{forged, u"\u0000"_qs}}).type(),
             QDBusMessage::ReplyMessage);
    QTest::qWait(100);
    QCOMPARE(m_app->workspace.opened, QStringList());
}

// The plugin files name what the code serves, with the keys their hosts read.
void tst_DesktopSearch::pluginFiles()
{
    const QString runner = QStringLiteral(TELVERRA_DATA "/org.telverra.Telverra.krunner.desktop");
    const QString provider = QStringLiteral(TELVERRA_DATA "/org.telverra.Telverra.search-provider.ini");
    const QString runnerKey = u"Desktop Entry/X-"_qs, providerKey = u"Shell Search Provider/"_qs;
    for (const auto &[file, key, value] :
         {std::array<QString, 3>{runner, runnerKey + u"Plasma-API", u"DBus"_qs},
          std::array<QString, 3>{runner, runnerKey + u"Plasma-DBusRunner-Service", u"org.telverra.Telverra"_qs},
          std::array<QString, 3>{runner, runnerKey + u"Plasma-DBusRunner-Path",
                                 QString::fromLatin1(KRunnerService::path)},
          std::array<QString, 3>{runner, runnerKey + u"KDE-ServiceTypes", u"Plasma/Runner"_qs},
          std::array<QString, 3>{provider, providerKey + u"BusName", u"org.telverra.Telverra"_qs},
          std::array<QString, 3>{provider, providerKey + u"ObjectPath", QString::fromLatin1(GnomeSearchProvider::path)},
          std::array<QString, 3>{provider, providerKey + u"Version", u"2"_qs}}) {
        QCOMPARE(QSettings(file, QSettings::IniFormat).value(key).toString(), value);
    }
    QVERIFY(!QSettings(runner, QSettings::IniFormat).value(runnerKey + u"KDE-PluginInfo-Name").toString().isEmpty());
    const QString desktopId = QSettings(provider, QSettings::IniFormat).value(providerKey + u"DesktopId").toString();
    QVERIFY(QFile::exists(QStringLiteral(TELVERRA_DATA "/") + desktopId));
}

// No window runs: the bus starts the program for the query, which comes while the address book is still being read
// and is answered once it has been, not with nobody; a result activated there is launched and recorded.
void tst_DesktopSearch::servedByAnActivatedProcess()
{
    if (QStandardPaths::findExecutable(u"dbus-daemon"_qs).isEmpty()) {
        QSKIP("no dbus-daemon");
    }
    TestHome home;
    QByteArray cards;
    for (int index = 0; index < 3000; ++index) {
        cards += "BEGIN:VCARD\nUID:" + QByteArray::number(index) + "\nN:Person;Number " + QByteArray::number(index) +
                 ";;;\nTEL;TYPE=CELL:+1 555 " + QByteArray::number(1000000 + index) + "\nEND:VCARD\n";
    }
    home.writeFile(u".local/share/contacts/many/many.vcf"_qs, cards);
    QVERIFY(home.registerRecordingHandler({u"tel"_qs}, home.path() + u"/opened.log"));
    home.writeFile(u"services/org.telverra.Telverra.service"_qs,
                   "[D-BUS Service]\nName=org.telverra.Telverra\nExec=" TELVERRA_EXECUTABLE
                   " --gapplication-service\n");
    const QString config =
        home.writeFile(u"session.conf"_qs,
                       "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><servicedir>" +
                           QFile::encodeName(home.path()) +
                           "/services</servicedir><policy context=\"default\"><allow send_destination=\"*\" "
                           "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>\n");
    QProcess daemon;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"PATH"_qs, home.path() + u"/bin:" + environment.value(u"PATH"_qs));
    environment.insert(u"QT_QPA_PLATFORM"_qs, u"offscreen"_qs);
    daemon.setProcessEnvironment(environment);
    daemon.start(u"dbus-daemon"_qs, {u"--config-file="_qs + config, u"--print-address"_qs, u"--nofork"_qs});
    QVERIFY(daemon.waitForReadyRead(10000));
    const QString address = QString::fromLatin1(daemon.readLine()).trimmed();
    {
        QDBusConnection bus = QDBusConnection::connectToBus(address, u"activation"_qs);
        QVERIFY(bus.isConnected());
        QDBusMessage query = QDBusMessage::createMethodCall(
            u"org.telverra.Telverra"_qs, QString::fromLatin1(KRunnerService::path), krunner, u"Match"_qs);
        query << u"number 2999"_qs;
        const QDBusMessage reply = bus.call(query, QDBus::Block, 30000); // the first query waits for the start
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QList<RemoteMatch> matches;
        reply.arguments().value(0).value<QDBusArgument>() >> matches;
        QCOMPARE(matches.size(), 1);
        QCOMPARE(matches.first().text, u"Number 2999 Person"_qs);
        QDBusMessage run = QDBusMessage::createMethodCall(
            u"org.telverra.Telverra"_qs, QString::fromLatin1(KRunnerService::path), krunner, u"Run"_qs);
        run << matches.first().id << u"call"_qs;
        QCOMPARE(bus.call(run, QDBus::Block, 10000).type(), QDBusMessage::ReplyMessage);
        const uint pid = bus.interface()->servicePid(u"org.telverra.Telverra"_qs);
        QTRY_COMPARE(home.lines(u"opened.log"_qs), QStringList{u"tel:+15551002999"_qs});
        ::kill(static_cast<pid_t>(pid), SIGTERM);
    }
    QDBusConnection::disconnectFromBus(u"activation"_qs);
    daemon.kill();
    daemon.waitForFinished();
    // The call is in the history, with its contact.
    QProcess recents;
    QProcessEnvironment cli = environment;
    cli.insert(u"DBUS_SESSION_BUS_ADDRESS"_qs, u"unix:path=/nonexistent"_qs);
    recents.setProcessEnvironment(cli);
    recents.start(QStringLiteral(TELVERRA_EXECUTABLE), {u"recents"_qs, u"--json"_qs});
    QVERIFY(recents.waitForFinished(30000));
    const QJsonArray history = QJsonDocument::fromJson(recents.readAllStandardOutput()).array();
    QCOMPARE(history.size(), 1);
    QCOMPARE(history[0].toObject().value(u"contactID"_qs).toString(), u"2999"_qs);
}

QTEST_GUILESS_MAIN(tst_DesktopSearch)
#include "tst_DesktopSearch.moc"
