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

namespace {
using StoreProbe::scalar;

template<class T>
QStringList fieldOf(const QList<std::shared_ptr<T>> &records, QString (T::*field)() const)
{
    QStringList values;
    for (const auto &record : records) {
        values.append(((*record).*field)());
    }
    return values;
}
} // namespace

class tst_CoreDataManager : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir.emplace();
        m_store = std::make_unique<CoreDataManager>(storeFile());
    }
    void cleanup() { m_store.reset(); }

    void recordsAndDefaultsSurviveReopening()
    {
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
        QCOMPARE((QStringList{recents.at(2)->destinationValue(), recents.at(2)->callType()}),
                 (QStringList{u"+34 600"_qs, u"telephone"_qs}));
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

    // Limits: none, 0 and below are no limit; a batch size never cuts the result.
    void fetchLimitsAndBatchSizes()
    {
        for (int i = 0; i < 5; ++i) {
            m_store->viewContext().insertNewObject<RecentCallEntity>();
        }
        m_store->save();
        const QList<std::tuple<std::optional<int>, std::optional<int>, int>> cases{{std::nullopt, std::nullopt, 5},
                                                                                   {0, std::nullopt, 5},
                                                                                   {-3, std::nullopt, 5},
                                                                                   {2, std::nullopt, 2},
                                                                                   {std::nullopt, 2, 5}};
        for (const auto &[limit, batch, count] : cases) {
            const auto fetched = m_store->fetchEntities<RecentCallEntity>(std::nullopt, std::nullopt, limit, batch);
            QVERIFY(fetched.ok());
            QCOMPARE(fetched.records.size(), count);
        }
    }

    void fetchSeesPendingChanges()
    {
        auto &context = m_store->viewContext();
        auto add = [&context](const QString &value, qint64 seconds) {
            auto record = context.insertNewObject<RecentCallEntity>();
            record->setDestinationValue(value);
            record->setDate(QDateTime::fromSecsSinceEpoch(seconds));
            return record;
        };
        auto saved = add(u"saved"_qs, 100);
        auto doomed = add(u"doomed"_qs, 300);
        m_store->save();
        auto pending = add(u"pending"_qs, 200);
        context.deleteObject(doomed.get());
        saved->setDate(QDateTime::fromSecsSinceEpoch(400)); // an unsaved change moves it to the top
        QVERIFY(context.hasChanges());
        const auto newestFirst = [this] {
            return fieldOf(m_store->fetchEntities<RecentCallEntity>(std::nullopt, {{{u"date"_qs, false}}}).records,
                           &RecentCallEntity::destinationValue);
        };
        QCOMPARE(newestFirst(), (QStringList{u"saved"_qs, u"pending"_qs}));
        context.deleteObject(pending.get()); // inserted and deleted before any save: simply gone
        QCOMPARE(newestFirst(), QStringList{u"saved"_qs});
        m_store->save();
        QVERIFY(!context.hasChanges());
        QVERIFY(doomed->isDeleted());
        QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 1);
    }

    // Ties in the sort keep insertion order, pending records last; equality is exact and sees pending records.
    void sortTiesAndPredicateEquality()
    {
        auto &context = m_store->viewContext();
        auto add = [&context](const QString &name, const QString &id) {
            auto contact = context.insertNewObject<FavoriteContactEntity>();
            contact->setGivenName(name);
            contact->setContactID(id);
            contact->setOrderIndex(0);
        };
        add(u"b"_qs, u"abc"_qs);
        add(u"a"_qs, u"ABC"_qs);
        add(u"c"_qs, u"abc"_qs);
        m_store->save();
        add(u"d"_qs, u"abc"_qs);
        const auto sorted = m_store->fetchEntities<FavoriteContactEntity>(std::nullopt, {{{u"orderIndex"_qs, true}}});
        QCOMPARE(fieldOf(sorted.records, &FavoriteContactEntity::givenName),
                 (QStringList{u"b"_qs, u"a"_qs, u"c"_qs, u"d"_qs}));
        const auto found = m_store->fetchEntities<FavoriteContactEntity>(
            Predicate::fromFormat(u"%K = %@"_qs, {u"contactID"_qs, u"abc"_qs}));
        QCOMPARE(fieldOf(found.records, &FavoriteContactEntity::givenName), (QStringList{u"b"_qs, u"c"_qs, u"d"_qs}));
    }

    void changesByAnotherProgramAreSeen()
    {
        for (const QString &value : {u"first"_qs, u"second"_qs}) {
            m_store->viewContext().insertNewObject<RecentCallEntity>()->setDestinationValue(value);
        }
        m_store->save();
        const auto before = m_store->fetchEntities<RecentCallEntity>().records;
        // Unchanged since our last read: served from memory, the same objects.
        QCOMPARE(m_store->fetchEntities<RecentCallEntity>().records.at(0).get(), before.at(0).get());
        QCOMPARE(scalar(storeFile(), u"INSERT INTO RecentCallEntity (destinationValue) VALUES ('third')"_qs), 0);
        QCOMPARE(scalar(storeFile(), u"DELETE FROM RecentCallEntity WHERE destinationValue = 'first'"_qs), 0);
        const auto after = m_store->fetchEntities<RecentCallEntity>().records;
        QCOMPARE(fieldOf(after, &RecentCallEntity::destinationValue), (QStringList{u"second"_qs, u"third"_qs}));
        QCOMPARE(after.at(0).get(), before.at(1).get());
        QCOMPARE(m_store
                     ->fetchEntities<RecentCallEntity>(
                         Predicate::fromFormat(u"%K = %@"_qs, {u"destinationValue"_qs, u"third"_qs}))
                     .records.size(),
                 1);
    }

    void fetchErrorsAreWrittenAndReturned()
    {
        const QList<std::tuple<std::optional<Predicate>, QString, QString>> cases{
            {Predicate::fromFormat(u"contactID BEGINSWITH %@"_qs, {u"a"_qs}), u"orderIndex"_qs,
             u"Unsupported predicate format \"contactID BEGINSWITH %@\""_qs},
            {std::nullopt, u"name"_qs, u"keypath name not found in entity FavoriteContactEntity"_qs}};
        for (const auto &[predicate, sortKey, error] : cases) {
            Trace::Capture capture;
            QVERIFY(!m_store->fetchEntities<FavoriteContactEntity>(predicate, {{{sortKey, true}}}).ok());
            QCOMPARE(capture.lines(), QStringList{u"Couldnt fetch the enities for FavoriteContactEntity "_qs + error});
        }
    }

    // A save that fails (here: the disk is full) says so, keeps its changes pending and leaves the file sound; the
    // next good save writes them.
    void fullDatabaseLosesNothing()
    {
        auto &context = m_store->viewContext();
        for (int i = 0; i < 3; ++i) {
            context.insertNewObject<RecentCallEntity>();
        }
        m_store->save();
        QSqlQuery query(QSqlDatabase::database(m_store->container().connectionName()));
        QVERIFY(query.exec(u"PRAGMA page_count"_qs) && query.next());
        QVERIFY(query.exec(u"PRAGMA max_page_count = "_qs + QString::number(query.value(0).toInt() + 2)));
        for (int i = 0; i < 5; ++i) {
            context.insertNewObject<RecentCallEntity>()->setDestinationValue(QString(200'000, u'x'));
        }
        Trace::Capture capture;
        m_store->save();
        QCOMPARE(capture.lines().size(), 1);
        QVERIFY2(capture.lines().at(0).startsWith(u"Error saving to Core Data database or disk is full"),
                 qPrintable(capture.lines().at(0)));
        QVERIFY(context.hasChanges());
        QCOMPARE(m_store->fetchEntities<RecentCallEntity>().records.size(), 8);
        QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 3);
        QCOMPARE(scalar(storeFile(), u"PRAGMA integrity_check"_qs), 0); // "ok" reads as 0

        QVERIFY(query.exec(u"PRAGMA max_page_count = 1000000"_qs));
        capture.clear();
        m_store->save();
        QVERIFY(capture.lines().isEmpty());
        QCOMPARE(scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 8);
    }

    void checkedInVersion1StoreOpens()
    {
        const QString copy = m_dir->path() + u"/v1.sqlite"_qs;
        QVERIFY(QFile::copy(QFINDTESTDATA("data/telverra-v1.sqlite"), copy));
        QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
        CoreDataManager store(copy);
        const auto recents = store.fetchEntities<RecentCallEntity>(std::nullopt, {{{u"date"_qs, false}}}).records;
        // Newest first; a record without a date sorts as the oldest.
        QCOMPARE(fieldOf(recents, &RecentCallEntity::destinationValue),
                 (QStringList{u"https://meet.google.com/abc-defg-hij"_qs, u"+34 600 123 456"_qs,
                              u"unknown destinationValue"_qs}));
        QCOMPARE(recents.at(1)->date(), QDateTime::fromSecsSinceEpoch(1767225600));
        QCOMPARE(recents.at(1)->url(), u"tel://+34600123456"_qs);
        QCOMPARE(store.fetchEntities<FavoriteContactEntity>().records.at(0)->givenName(), u"Élodie"_qs);
        QCOMPARE(store.fetchEntities<FavoriteActionEntity>().records.size(), 1);
    }

    // A file that is not a readable database is refused by the program at start (below).
    void storesThatCannotLoad()
    {
        const QList<std::pair<QStringList, QString>> cases{
            {{u"PRAGMA user_version = 7"_qs}, u"newer version of Telverra (model version 7"_qs},
            {{u"CREATE TABLE notes (id INTEGER PRIMARY KEY, body TEXT)"_qs}, u"did not make"_qs},
            {{u"CREATE TABLE RecentCallEntity (id INTEGER PRIMARY KEY, callType TEXT)"_qs,
              u"PRAGMA user_version = 1"_qs},
             u"incompatible: RecentCallEntity has no attribute contactID"_qs}};
        for (const auto &[statements, error] : cases) {
            const QString file = m_dir->path() + u"/bad"_qs + QString::number(qHash(error)) + u".sqlite"_qs;
            for (const QString &statement : statements) {
                scalar(file, statement);
            }
            PersistentContainer container(u"Telverra"_qs, file);
            QStringList reported;
            container.loadPersistentStores([&](const PersistentContainer::StoreDescription &description,
                                               const QString &e) { reported << description.file << e; });
            QCOMPARE(reported.size(), 2); // called once
            QCOMPARE(reported.at(0), file);
            QVERIFY2(reported.at(1).contains(error), qPrintable(reported.at(1)));
        }
    }

    void fatalStopBeforeAnyWindow_data()
    {
        QTest::addColumn<QString>("platform");
        QTest::newRow("no display: the fatal line only") << u"offscreen"_qs;
        if (!qEnvironmentVariableIsEmpty("DISPLAY") && !QStandardPaths::findExecutable(u"xdotool"_qs).isEmpty()) {
            QTest::newRow("a display: a message window first") << u"xcb"_qs;
        }
    }
    // A damaged store stops the program before its window, and leaves the file as it was. With a display the user is
    // told in a window (the test finds it by its title and presses Return on its button) before the fatal line.
    void fatalStopBeforeAnyWindow()
    {
        QFETCH(QString, platform);
        TestHome home;
        const QByteArray damaged = QByteArray("SQLite format 2\0 not really a database", 39).repeated(100);
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
        QCOMPARE(home.read(file).toLatin1(), damaged);
        QVERIFY(!QFile::exists(file + u"-wal"));
    }

    // A writer adds records one save at a time and says which it saved; it is killed at a random moment after its
    // first save. Every record it acknowledged must be there afterwards and the file must stay sound.
    void durabilityUnderKill()
    {
        m_store.reset();
        const int rounds = qEnvironmentVariableIntValue("TELVERRA_DURABILITY_ROUNDS") > 0
                               ? qEnvironmentVariableIntValue("TELVERRA_DURABILITY_ROUNDS")
                               : 40;
        QSet<QString> acknowledged;
        for (int round = 0; round < rounds; ++round) {
            QProcess writer;
            writer.start(QStringLiteral(STORE_WRITER_EXECUTABLE), {storeFile(), QString::number(round)});
            QByteArray output;
            while (!output.contains('\n')) {
                QVERIFY2(writer.waitForReadyRead(60000), "the writer reported no save");
                output += writer.readAllStandardOutput();
            }
            QTest::qSleep(QRandomGenerator::global()->bounded(50)); // in the middle of a later save, or between two
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
        const auto records = store.fetchEntities<RecentCallEntity>().records;
        const QStringList stored = fieldOf(records, &RecentCallEntity::destinationValue);
        const QSet<QString> lost = acknowledged - QSet<QString>(stored.begin(), stored.end());
        qInfo("durability: %d kills, %lld acknowledged, %lld stored, %lld lost", rounds,
              static_cast<long long>(acknowledged.size()), static_cast<long long>(stored.size()),
              static_cast<long long>(lost.size()));
        QVERIFY(acknowledged.size() >= rounds);
        QVERIFY(lost.isEmpty());
    }

private:
    QString storeFile() const { return m_dir->path() + u"/Telverra.sqlite"; }
    std::optional<QTemporaryDir> m_dir;
    std::unique_ptr<CoreDataManager> m_store;
};

QTEST_GUILESS_MAIN(tst_CoreDataManager)
#include "tst_CoreDataManager.moc"
