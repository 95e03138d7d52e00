#include "common/Trace.h"
#include "recents/RecentCallItemViewModel.h"
#include "recents/RecentCallsDataService.h"
#include "store/CoreDataManager.h"
#include "support/StoreProbe.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

class tst_RecentCallsDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_dir.emplace();
        m_store = std::make_unique<CoreDataManager>(storeFile());
    }
    void cleanup() { m_store.reset(); }

    void addRecordsEveryField_data()
    {
        QTest::addColumn<CallTypes>("type");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("contactID");
        QTest::addColumn<QString>("url");
        QTest::newRow("telephone") << CallTypes::telephone << u"+34 600"_qs << u"C1"_qs << u"tel://+34 600"_qs;
        QTest::newRow("facetime audio") << CallTypes::facetimeaudio << u"a@b.c"_qs << u"C1"_qs
                                        << u"facetime-audio://a@b.c"_qs;
        QTest::newRow("messages") << CallTypes::messages << u"600"_qs << QString() << u"sms:600"_qs;
        QTest::newRow("mail") << CallTypes::mail << u"a@b.c"_qs << QString() << u"mailto:a@b.c"_qs;
        QTest::newRow("zoom keeps its contact")
            << CallTypes::zoom << u"https://zoom.us/j/1"_qs << u"C9"_qs << u"https://zoom.us/j/1"_qs;
        QTest::newRow("new meet") << CallTypes::googleMeetNew << u"https://meet.google.com/new"_qs << QString()
                                  << u"https://meet.google.com/new"_qs;
        QTest::newRow("skype is not prefixed") << CallTypes::skype << u"bob"_qs << QString() << u"bob"_qs;
    }
    void addRecordsEveryField()
    {
        QFETCH(CallTypes, type);
        QFETCH(QString, value);
        QFETCH(QString, contactID);
        QFETCH(QString, url);
        RecentCallsDataService service(m_store.get());
        QSignalSpy published(&service, &RecentCallsDataService::savedRecentsChanged);
        const QDateTime before = QDateTime::currentDateTime();
        service.addRecentCall(value, type, contactID, u"mobile"_qs);
        QCOMPARE(published.size(), 0);
        QVERIFY(!m_store->viewContext().hasChanges());

        // What another run of the application would read.
        m_store.reset();
        CoreDataManager reopened(storeFile());
        const auto records = reopened.fetchEntities<RecentCallEntity>().records;
        QCOMPARE(records.size(), 1);
        const auto &record = *records.at(0);
        QCOMPARE((QStringList{record.callType(), record.destinationValue(), record.destinationTag(), record.url()}),
                 (QStringList{rawValue(type), value, u"mobile"_qs, url}));
        QCOMPARE(record.storedContactID(), std::optional(contactID));
        QCOMPARE(record.storedTelcoID(), std::optional(QString()));
        QVERIFY(record.storedDate() >= before.addMSecs(-1) && record.storedDate() <= QDateTime::currentDateTime());
    }

    // Newest first; when the table is gone under it, the fetch fails for real and the list stays as it was.
    void fetchNewestFirstAndKeepsListOnFailure()
    {
        RecentCallsDataService service(m_store.get());
        for (const QString &value : {u"600111"_qs, u"bob@example.com"_qs, u"700600111"_qs}) {
            service.addRecentCall(value, CallTypes::telephone, QString(), QString());
            QTest::qWait(2); // distinct dates
        }
        QSignalSpy published(&service, &RecentCallsDataService::savedRecentsChanged);
        service.fetchRecentCalls();
        QCOMPARE(published.size(), 1);
        QStringList values;
        for (const auto &record : service.savedRecents()) {
            values.append(record->destinationValue());
        }
        QCOMPARE(values, (QStringList{u"700600111"_qs, u"bob@example.com"_qs, u"600111"_qs}));

        QCOMPARE(StoreProbe::scalar(storeFile(), u"DROP TABLE RecentCallEntity"_qs), 0);
        Trace::Capture capture;
        service.fetchRecentCalls();
        QCOMPARE(capture.lines().size(), 2);
        QVERIFY(capture.lines().at(0).startsWith(u"Couldnt fetch the enities for RecentCallEntity "));
        QVERIFY2(capture.lines().at(1).startsWith(u"- Couldn't fetch recent calls:no such table"),
                 qPrintable(capture.lines().at(1)));
        QCOMPARE(service.savedRecents().size(), 3);
    }

    void deleteAllSavesOncePerRecord()
    {
        RecentCallsDataService(m_store.get()).addRecentCall(u"0"_qs, CallTypes::telephone, QString(), QString());
        RecentCallsDataService(m_store.get()).addRecentCall(u"1"_qs, CallTypes::telephone, QString(), QString());
        m_store.reset();

        // In a store that cannot be written, each delete fails its own save.
        CoreDataManager readOnly(storeFile(), PersistentContainer::OpenMode::ReadOnly);
        RecentCallsDataService service(&readOnly);
        service.fetchRecentCalls();
        Trace::Capture capture;
        service.deleteAllRecentCalls();
        QCOMPARE(capture.lines().size(), 2);
        for (const QString &line : capture.lines()) {
            QVERIFY(line.startsWith(u"Error saving to Core Data "));
        }
        QCOMPARE(service.savedRecents().size(), 2); // the caller reloads

        CoreDataManager writable(storeFile());
        RecentCallsDataService again(&writable);
        again.fetchRecentCalls();
        again.deleteAllRecentCalls();
        QCOMPARE(StoreProbe::scalar(storeFile(), u"SELECT count(*) FROM RecentCallEntity"_qs), 0);
        capture.clear();
        again.fetchRecentCalls();
        again.deleteAllRecentCalls(); // empty: nothing to do
        QVERIFY(capture.lines().isEmpty());
    }

    void rowKind()
    {
        using Kind = RecentCallItemViewModel::RowKind;
        const QList<std::pair<Kind, QStringList>> kinds{
            {Kind::personal, {u"telephone"_qs, u"mail"_qs, u"facetime"_qs, u"facetime-audio"_qs, u"messages"_qs}},
            {Kind::meeting, {u"meet"_qs, u"newMeet"_qs, u"webex"_qs, u"zoom"_qs, u"jitsi"_qs}},
            {Kind::none,
             {u"skype"_qs, u"slack"_qs, u"telegram"_qs, u"not recognized"_qs, u"unknown type"_qs, u"googleMeet"_qs}}};
        for (const auto &[kind, types] : kinds) {
            for (const QString &type : types) {
                QVERIFY2(RecentCallItemViewModel::rowKind(type) == kind, qPrintable(type));
            }
        }
    }

    void relativeDateText_data()
    {
        QTest::addColumn<QDateTime>("date");
        QTest::addColumn<QString>("text");
        // "Now" is Wednesday 18 November 2026, 10:00.
        QTest::newRow("earlier today") << QDateTime(QDate(2026, 11, 18), QTime(0, 0)) << u"today"_qs;
        QTest::newRow("later today") << QDateTime(QDate(2026, 11, 18), QTime(23, 0)) << u"today"_qs;
        QTest::newRow("23:59 yesterday") << QDateTime(QDate(2026, 11, 17), QTime(23, 59)) << u"yesterday"_qs;
        QTest::newRow("four days ago") << QDateTime(QDate(2026, 11, 14), QTime(9, 0)) << u"Saturday"_qs;
        QTest::newRow("start of the seventh day before")
            << QDateTime(QDate(2026, 11, 11), QTime(0, 0)) << u"Wednesday"_qs;
        QTest::newRow("eight days ago") << QDateTime(QDate(2026, 11, 10), QTime(12, 0)) << u"10 Nov, 2026"_qs;
        QTest::newRow("tomorrow") << QDateTime(QDate(2026, 11, 19), QTime(9, 0)) << u"19 Nov, 2026"_qs;
    }
    void relativeDateText()
    {
        QFETCH(QDateTime, date);
        QFETCH(QString, text);
        const QDateTime now(QDate(2026, 11, 18), QTime(10, 0));
        QCOMPARE(
            RecentCallItemViewModel::relativeDateText(date, now, QLocale(QLocale::English, QLocale::UnitedKingdom)),
            text);
    }

private:
    QString storeFile() const { return m_dir->path() + u"/Telverra.sqlite"; }
    std::optional<QTemporaryDir> m_dir;
    std::unique_ptr<CoreDataManager> m_store;
};

QTEST_GUILESS_MAIN(tst_RecentCallsDataService)
#include "tst_RecentCallsDataService.moc"
