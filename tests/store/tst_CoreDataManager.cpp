#include "common/Trace.h"
#include "store/CoreDataManager.h"
#include "store/Entities.h"
#include "support/StoreProbe.h"
#include "support/TestHome.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

using StoreProbe::scalar;

QStringList destinations(const QList<RecentCallEntityPtr> &records)
{
    QStringList values;
    for (const auto &record : records) {
        values.append(record->destinationValue());
    }
    return values;
}

} // namespace

class tst_CoreDataManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void recordsAndDefaultsSurviveReopening();
    void fetchLimitsAndBatchSizes_data();
    void fetchLimitsAndBatchSizes();
    void fetchSeesPendingChanges();
    void sortTiesKeepInsertionOrder();
    void predicateEquality();
    void changesByAnotherProgramAreSeen();
    void fetchErrorsAreWrittenAndReturned_data();
    void fetchErrorsAreWrittenAndReturned();
    void saveIntoReadOnlyStoreKeepsChangesPending();
    void fullDatabaseLosesNothing();
    void checkedInVersion1StoreOpens();
    void storesThatCannotLoad_data();
    void storesThatCannotLoad();
    void fatalStopBeforeAnyWindow_data();
    void fatalStopBeforeAnyWindow();
    void durabilityUnderKill();

private:
    QString storeFile() const { return m_dir->path() + u"/Telverra.sqlite"; }
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<CoreDataManager> m_store;
};

void tst_CoreDataManager::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_store = std::make_unique<CoreDataManager>(storeFile());
}

void tst_CoreDataManager::cleanup()
{
    m_store.reset();
    m_dir.reset();
}

void tst_CoreDataManager::recordsAndDefaultsSurviveReopening()
{
    QCOMPARE(m_store->containerName, u"Telverra"_qs);
    auto &context = m_store->viewContext();
    auto undated = context.insertNewObject<RecentCallEntity>();
    const QDateTime first = undated->date(); // no date reads as now, at every read
    QTest::qWait(5);
    QVERIFY(first < undated->date());
    QVERIFY(qAbs(undated->date().msecsTo(QDateTime::currentDateTime())) < 1000);
    context.insertNewObject<RecentCallEntity>()->setDestinationTag(QString());
    auto call = context.insertNewObject<RecentCallEntity>();
    call->setDestinationValue(u"+34 600"_qs);
    call->setCallType(u"telephone"_qs);
    const QDateTime stamped = QDateTime::fromSecsSinceEpoch(1767225600).addMSecs(250);
    call->setDate(stamped);
    context.insertNewObject<FavoriteTelcoEntity>();
    context.insertNewObject<FavoriteContactEntity>();
    context.insertNewObject<FavoriteActionEntity>();
    m_store->save();
    m_store.reset();
    QCOMPARE(scalar(storeFile(), u"PRAGMA user_version"_qs), 1);

    // Read back through a second manager, so that the values and defaults come from what is stored.
    CoreDataManager reopened(storeFile());
    const auto recents = reopened.fetchEntities<RecentCallEntity>().records;
    QCOMPARE(recents.size(), 3);
    const RecentCallEntity &absent = *recents.at(0);
    QCOMPARE((QStringList{absent.destinationValue(), absent.destinationTag(), absent.contactID(), absent.telcoID(),
                          absent.callType(), absent.url()}),
             (QStringList{u"unknown destinationValue"_qs, u"unknown destinationTag"_qs, u"unknown contactId"_qs,
                          u"unknown telcoId"_qs, u"unknown type"_qs, u"unknown url"_qs}));
    QVERIFY2(recents.at(1)->storedDestinationTag().has_value(), "an empty tag is a value");
    QCOMPARE(recents.at(1)->destinationTag(), QString());
    QCOMPARE(destinations({recents.at(2)}), QStringList{u"+34 600"_qs});
    QCOMPARE(recents.at(2)->callType(), u"telephone"_qs);
    QCOMPARE(recents.at(2)->date(), stamped);

    const auto telco = reopened.fetchEntities<FavoriteTelcoEntity>().records.at(0);
    const auto contact = reopened.fetchEntities<FavoriteContactEntity>().records.at(0);
    const auto action = reopened.fetchEntities<FavoriteActionEntity>().records.at(0);
    QCOMPARE((QStringList{telco->telcoName(), telco->telcoType(), telco->telcoValue(), contact->contactID(),
                          contact->givenName(), contact->familyName(), action->actionTag(), action->actionType(),
                          action->actionValue(), action->contactID()}),
             QStringList(10, u"unknown type"_qs));
    QCOMPARE(telco->orderIndex(), 0);
}

void tst_CoreDataManager::fetchLimitsAndBatchSizes_data()
{
    QTest::addColumn<std::optional<int>>("limit");
    QTest::addColumn<std::optional<int>>("batch");
    QTest::addColumn<int>("count");
    QTest::newRow("none") << std::optional<int>() << std::optional<int>() << 5;
    QTest::newRow("limit 0 is none") << std::optional(0) << std::optional<int>() << 5;
    QTest::newRow("negative limit is none") << std::optional(-3) << std::optional<int>() << 5;
    QTest::newRow("limit 2") << std::optional(2) << std::optional<int>() << 2;
    QTest::newRow("limit beyond count") << std::optional(50) << std::optional<int>() << 5;
    QTest::newRow("batch size does not cut") << std::optional<int>() << std::optional(2) << 5;
    QTest::newRow("negative batch size") << std::optional<int>() << std::optional(-1) << 5;
}

void tst_CoreDataManager::fetchLimitsAndBatchSizes()
{
    QFETCH(std::optional<int>, limit);
    QFETCH(std::optional<int>, batch);
    QFETCH(int, count);
    for (int i = 0; i < 5; ++i) {
        m_store->viewContext().insertNewObject<RecentCallEntity>()->setDestinationValue(QString::number(i));
    }
    m_store->save();
    const auto fetched = m_store->fetchEntities<RecentCallEntity>(std::nullopt, std::nullopt, limit, batch);
    QVERIFY(fetched.ok());
    QCOMPARE(fetched.records.size(), count);
}

void tst_CoreDataManager::fetchSeesPendingChanges()
{
    auto &context = m_store->viewContext();
    auto saved = context.insertNewObject<RecentCallEntity>();
    saved->setDestinationValue(u"saved"_qs);
    saved->setDate(QDateTime::fromSecsSinceEpoch(100));
    auto doomed = context.insertNewObject<RecentCallEntity>();
    doomed->setDestinationValue(u"doomed"_qs);
    doomed->setDate(QDateTime::fromSecsSinceEpoch(300));
    m_store->save();

    auto pending = context.insertNewObject<RecentCallEntity>();
    pending->setDestinationValue(u"pending"_qs);
    pending->setDate(QDateTime::fromSecsSinceEpoch(200));
    context.deleteObject(doomed.get());
    saved->setDate(QDateTime::fromSecsSinceEpoch(400)); // an unsaved change moves it to the top
    QVERIFY(context.hasChanges());

    const QList<SortDescriptor> newestFirst{{u"date"_qs, false}};
    QCOMPARE(destinations(m_store->fetchEntities<RecentCallEntity>(std::nullopt, newestFirst).records),
             (QStringList{u"saved"_qs, u"pending"_qs}));

    // An inserted record deleted before any save is simply gone.
    context.deleteObject(pending.get());
    QCOMPARE(destinations(m_store->fetchEntities<RecentCallEntity>(std::nullopt, newestFirst).records),
             QStringList{u"saved"_qs});
    m_store->save();
    QVERIFY(!context.hasChanges());
    QVERIFY(doomed->isDeleted());
    QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 1);
}

void tst_CoreDataManager::sortTiesKeepInsertionOrder()
{
    auto &context = m_store->viewContext();
    for (const QString &name : {u"b"_qs, u"a"_qs, u"c"_qs}) {
        auto telco = context.insertNewObject<FavoriteTelcoEntity>();
        telco->setTelcoName(name);
        telco->setOrderIndex(0);
    }
    m_store->save();
    auto later = context.insertNewObject<FavoriteTelcoEntity>(); // pending, also index 0: last
    later->setTelcoName(u"d"_qs);
    const auto fetched =
        m_store->fetchEntities<FavoriteTelcoEntity>(std::nullopt, QList<SortDescriptor>{{u"orderIndex"_qs, true}});
    QStringList names;
    for (const auto &telco : fetched.records) {
        names.append(telco->telcoName());
    }
    QCOMPARE(names, (QStringList{u"b"_qs, u"a"_qs, u"c"_qs, u"d"_qs}));
}

void tst_CoreDataManager::predicateEquality()
{
    auto &context = m_store->viewContext();
    for (const QString &id : {u"abc"_qs, u"ABC"_qs, u"abc"_qs}) {
        context.insertNewObject<FavoriteContactEntity>()->setContactID(id);
    }
    m_store->save();
    auto unsaved = context.insertNewObject<FavoriteContactEntity>();
    unsaved->setContactID(u"abc"_qs);
    const auto found = m_store->fetchEntities<FavoriteContactEntity>(
        Predicate::fromFormat(u"%K = %@"_qs, {u"contactID"_qs, u"abc"_qs}));
    QVERIFY(found.ok());
    QCOMPARE(found.records.size(), 3);
}

void tst_CoreDataManager::changesByAnotherProgramAreSeen()
{
    auto &context = m_store->viewContext();
    for (const QString &value : {u"first"_qs, u"second"_qs}) {
        context.insertNewObject<RecentCallEntity>()->setDestinationValue(value);
    }
    m_store->save();
    const auto before = m_store->fetchEntities<RecentCallEntity>().records;
    QCOMPARE(destinations(before), (QStringList{u"first"_qs, u"second"_qs}));

    // Unchanged since our last read: served from memory, the same objects.
    QCOMPARE(m_store->fetchEntities<RecentCallEntity>().records.at(0).get(), before.at(0).get());

    QCOMPARE(scalar(storeFile(), u"INSERT INTO RecentCallEntity (destinationValue) VALUES ('third')"_qs), 0);
    QCOMPARE(scalar(storeFile(), u"DELETE FROM RecentCallEntity WHERE destinationValue = 'first'"_qs), 0);
    const auto after = m_store->fetchEntities<RecentCallEntity>().records;
    QCOMPARE(destinations(after), (QStringList{u"second"_qs, u"third"_qs}));
    QCOMPARE(after.at(0).get(), before.at(1).get());
    QCOMPARE(m_store
                 ->fetchEntities<RecentCallEntity>(
                     Predicate::fromFormat(u"%K = %@"_qs, {u"destinationValue"_qs, u"third"_qs}))
                 .records.size(),
             1);
}

void tst_CoreDataManager::fetchErrorsAreWrittenAndReturned_data()
{
    QTest::addColumn<std::optional<Predicate>>("predicate");
    QTest::addColumn<QString>("sortKey");
    QTest::addColumn<QString>("line");
    QTest::newRow("unsupported predicate")
        << std::optional(Predicate::fromFormat(u"contactID BEGINSWITH %@"_qs, {u"a"_qs})) << u"orderIndex"_qs
        << u"Couldnt fetch the enities for FavoriteContactEntity Unsupported predicate format \"contactID BEGINSWITH "
           u"%@\""_qs;
    QTest::newRow("unknown sort key") << std::optional<Predicate>() << u"name"_qs
                                      << u"Couldnt fetch the enities for FavoriteContactEntity keypath name not found "
                                         u"in entity FavoriteContactEntity"_qs;
}

void tst_CoreDataManager::fetchErrorsAreWrittenAndReturned()
{
    QFETCH(std::optional<Predicate>, predicate);
    QFETCH(QString, sortKey);
    QFETCH(QString, line);
    Trace::Capture capture;
    const auto fetched =
        m_store->fetchEntities<FavoriteContactEntity>(predicate, QList<SortDescriptor>{{sortKey, true}});
    QVERIFY(!fetched.ok());
    QCOMPARE(capture.lines(), QStringList{line});
}

void tst_CoreDataManager::saveIntoReadOnlyStoreKeepsChangesPending()
{
    m_store->viewContext().insertNewObject<RecentCallEntity>()->setDestinationValue(u"kept"_qs);
    m_store->save();
    m_store.reset();

    CoreDataManager readOnly(storeFile(), PersistentContainer::OpenMode::ReadOnly);
    auto pending = readOnly.viewContext().insertNewObject<RecentCallEntity>();
    pending->setDestinationValue(u"pending"_qs);
    Trace::Capture capture;
    readOnly.save();
    QCOMPARE(capture.lines().size(), 1);
    QVERIFY2(capture.lines().at(0).startsWith(u"Error saving to Core Data attempt to write a readonly database"),
             qPrintable(capture.lines().at(0)));
    QVERIFY(readOnly.viewContext().hasChanges());
    QCOMPARE(destinations(readOnly.fetchEntities<RecentCallEntity>().records),
             (QStringList{u"kept"_qs, u"pending"_qs}));
    QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 1);
}

void tst_CoreDataManager::fullDatabaseLosesNothing()
{
    auto &context = m_store->viewContext();
    for (int i = 0; i < 3; ++i) {
        context.insertNewObject<RecentCallEntity>()->setDestinationValue(u"committed "_qs + QString::number(i));
    }
    m_store->save();
    QSqlQuery query(QSqlDatabase::database(m_store->container().connectionName()));
    QVERIFY(query.exec(u"PRAGMA page_count"_qs) && query.next());
    const int pages = query.value(0).toInt();
    QVERIFY(query.exec(u"PRAGMA max_page_count = "_qs + QString::number(pages + 2)));

    const QString big(200'000, u'x');
    for (int i = 0; i < 5; ++i) {
        context.insertNewObject<RecentCallEntity>()->setDestinationValue(big);
    }
    Trace::Capture capture;
    m_store->save();
    QCOMPARE(capture.lines().size(), 1);
    QVERIFY2(capture.lines().at(0).startsWith(u"Error saving to Core Data database or disk is full"),
             qPrintable(capture.lines().at(0)));
    QVERIFY(context.hasChanges());
    QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 3);
    QCOMPARE(scalar(storeFile(), u"PRAGMA integrity_check"_qs), 0); // "ok" reads as 0

    // Room again: the next good save writes what was kept pending.
    QVERIFY(query.exec(u"PRAGMA max_page_count = 1000000"_qs));
    capture.clear();
    m_store->save();
    QVERIFY(capture.lines().isEmpty());
    QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 8);
}

void tst_CoreDataManager::checkedInVersion1StoreOpens()
{
    const QString copy = m_dir->path() + u"/v1.sqlite"_qs;
    QVERIFY(QFile::copy(QFINDTESTDATA("data/telverra-v1.sqlite"), copy));
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    CoreDataManager store(copy);
    const auto recents =
        store.fetchEntities<RecentCallEntity>(std::nullopt, QList<SortDescriptor>{{u"date"_qs, false}}).records;
    // Newest first; a record without a date sorts as the oldest.
    QCOMPARE(destinations(recents), (QStringList{u"https://meet.google.com/abc-defg-hij"_qs, u"+34 600 123 456"_qs,
                                                 u"unknown destinationValue"_qs}));
    QCOMPARE(recents.at(1)->date(), QDateTime::fromSecsSinceEpoch(1767225600));
    QCOMPARE(recents.at(1)->url(), u"tel://+34600123456"_qs);
    QCOMPARE(store.fetchEntities<FavoriteContactEntity>().records.at(0)->givenName(), u"Élodie"_qs);
    QCOMPARE(store.fetchEntities<FavoriteActionEntity>().records.size(), 1);
}

void tst_CoreDataManager::storesThatCannotLoad_data()
{
    QTest::addColumn<QByteArray>("content");     // written as the file, or
    QTest::addColumn<QStringList>("statements"); // run on a new database
    QTest::addColumn<QString>("error");
    QTest::newRow("corrupt header") << QByteArray("SQLite format 2\0 not really a database", 39).repeated(200)
                                    << QStringList() << u"is not a readable database: file is not a database"_qs;
    QTest::newRow("newer version") << QByteArray() << QStringList{u"PRAGMA user_version = 7"_qs}
                                   << u"newer version of Telverra (model version 7"_qs;
    QTest::newRow("someone else's database")
        << QByteArray() << QStringList{u"CREATE TABLE notes (id INTEGER PRIMARY KEY, body TEXT)"_qs}
        << u"did not make"_qs;
    QTest::newRow("table missing a column")
        << QByteArray()
        << QStringList{u"CREATE TABLE RecentCallEntity (id INTEGER PRIMARY KEY, callType TEXT)"_qs,
                       u"PRAGMA user_version = 1"_qs}
        << u"incompatible: RecentCallEntity has no attribute contactID"_qs;
}

void tst_CoreDataManager::storesThatCannotLoad()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, statements);
    QFETCH(QString, error);
    const QString file = m_dir->path() + u"/bad.sqlite"_qs;
    if (!content.isEmpty()) {
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(content);
    }
    for (const QString &statement : statements) {
        scalar(file, statement);
    }
    PersistentContainer container(u"Telverra"_qs, file);
    QString reported;
    int calls = 0;
    container.loadPersistentStores([&](const PersistentContainer::StoreDescription &description, const QString &e) {
        ++calls;
        QCOMPARE(description.file, file);
        reported = e;
    });
    QCOMPARE(calls, 1);
    QVERIFY2(reported.contains(error), qPrintable(reported));
}

void tst_CoreDataManager::fatalStopBeforeAnyWindow_data()
{
    QTest::addColumn<QString>("platform");
    QTest::newRow("no display: the fatal line only") << u"offscreen"_qs;
    if (!qEnvironmentVariableIsEmpty("DISPLAY") && !QStandardPaths::findExecutable(u"xdotool"_qs).isEmpty()) {
        QTest::newRow("a display: a message window first") << u"xcb"_qs;
    }
}

// A damaged store stops the program before its window, and leaves the file as it was. With a display the user is
// told in a window (the test finds it by its title and presses Return on its button) before the fatal line.
void tst_CoreDataManager::fatalStopBeforeAnyWindow()
{
    QFETCH(QString, platform);
    TestHome home;
    const QByteArray damaged(4096, 'Z');
    const QString file = home.writeFile(u".local/share/telverra/Telverra.sqlite"_qs, damaged);
    QProcess telverra;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_QPA_PLATFORM"_qs, platform);
    environment.insert(u"ASAN_OPTIONS"_qs, u"detect_leaks=0:handle_abort=0"_qs);
    telverra.setProcessEnvironment(environment);
    telverra.start(QStringLiteral(TELVERRA_EXECUTABLE), {});
    QVERIFY(telverra.waitForStarted());
    if (platform == u"xcb") {
        QProcess search;
        search.start(u"xdotool"_qs, {u"search"_qs, u"--sync"_qs, u"--onlyvisible"_qs, u"--name"_qs,
                                     u"Telverra cannot open its history"_qs});
        QVERIFY(search.waitForFinished(30000));
        const QString window = QString::fromLatin1(search.readAllStandardOutput()).section(u'\n', 0, 0).trimmed();
        QVERIFY2(!window.isEmpty(), "the message window did not appear");
        QVERIFY(!telverra.waitForFinished(500)); // it waits for the user
        QCOMPARE(QProcess::execute(u"xdotool"_qs, {u"windowfocus"_qs, u"--sync"_qs, window}), 0);
        QCOMPARE(QProcess::execute(u"xdotool"_qs, {u"key"_qs, u"Return"_qs}), 0);
    }
    QVERIFY(telverra.waitForFinished(30000));
    QCOMPARE(telverra.exitStatus(), QProcess::CrashExit);
    const QString errors = QString::fromUtf8(telverra.readAllStandardError());
    QVERIFY2(errors.contains(u"Telverra/CoreDataManager:40: Fatal error: Core Data unresolved error The store "_qs),
             qPrintable(errors));
    QVERIFY(errors.contains(u"is not a readable database: file is not a database"_qs));
    QFile after(file);
    QVERIFY(after.open(QIODevice::ReadOnly));
    QCOMPARE(after.readAll(), damaged);
    QVERIFY(!QFile::exists(file + u"-wal"));
}

// A writer adds records one save at a time and says which it saved; it is killed at a random moment after its first
// save. Every record it acknowledged must be there afterwards and the file must stay sound.
void tst_CoreDataManager::durabilityUnderKill()
{
    m_store.reset();
    const int rounds = qEnvironmentVariableIntValue("TELVERRA_DURABILITY_ROUNDS") > 0
                           ? qEnvironmentVariableIntValue("TELVERRA_DURABILITY_ROUNDS")
                           : 40;
    QSet<QString> acknowledged;
    for (int round = 0; round < rounds; ++round) {
        QProcess writer;
        writer.start(QStringLiteral(STORE_WRITER_EXECUTABLE), {storeFile(), QString::number(round)});
        QVERIFY(writer.waitForStarted());
        QByteArray output;
        while (!output.contains('\n')) {
            QVERIFY2(writer.waitForReadyRead(60000), "the writer reported no save");
            output += writer.readAllStandardOutput();
        }
        // A moment in the middle of a later save, or between two.
        QTest::qSleep(QRandomGenerator::global()->bounded(50));
        writer.kill();
        writer.waitForFinished();
        output += writer.readAllStandardOutput();
        for (const QByteArray &line : output.split('\n')) {
            if (line.startsWith("saved ")) {
                acknowledged.insert(QString::fromLatin1(line.mid(6)));
            }
        }
    }
    QCOMPARE(scalar(storeFile(), u"PRAGMA integrity_check"_qs), 0);
    CoreDataManager store(storeFile());
    QSet<QString> stored;
    for (const auto &record : store.fetchEntities<RecentCallEntity>().records) {
        stored.insert(record->destinationValue());
    }
    const QSet<QString> lost = acknowledged - stored;
    qInfo("durability: %d kills, %lld acknowledged records, %lld stored, %lld lost", rounds,
          static_cast<long long>(acknowledged.size()), static_cast<long long>(stored.size()),
          static_cast<long long>(lost.size()));
    QVERIFY(acknowledged.size() >= rounds);
    QVERIFY(lost.isEmpty());
}

QTEST_GUILESS_MAIN(tst_CoreDataManager)
#include "tst_CoreDataManager.moc"
