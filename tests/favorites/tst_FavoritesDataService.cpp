#include "common/Trace.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/VCardDirectoryStore.h"
#include "favorites/FavoriteTelcoEditor.h"
#include "favorites/FavoritesDataService.h"
#include "store/CoreDataManager.h"
#include "support/StoreProbe.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {
template<class T, class F>
QStringList project(const QList<std::shared_ptr<T>> &records, F field)
{
    QStringList values;
    for (const auto &record : records) {
        values.append(field(*record));
    }
    return values;
}

// The favourites' address book: an empty one in a folder of the test's own.
struct EmptyAddressBook
{
    EmptyAddressBook()
        : store(QStringList{dir.path()})
        , manager(store)
    {
        ContactStoreManager::setSharedContactStore(&store);
    }
    QTemporaryDir dir;
    VCardDirectoryStore store;
    ContactStoreManager manager;
};
Q_GLOBAL_STATIC(EmptyAddressBook, addressBook)
} // namespace

class tst_FavoritesDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        addressBook(); // before anything asks for the shared address book
        m_dir.emplace();
        m_store = std::make_unique<CoreDataManager>(storeFile());
    }
    void cleanup() { m_store.reset(); }

    void orderIndexIsTheCurrentCount_data()
    {
        QTest::addColumn<bool>("reloadBetween");
        QTest::addColumn<QList<int>>("indexes");
        QTest::newRow("reloaded between additions") << true << QList<int>{0, 1, 2};
        QTest::newRow("no reloads: all get 0") << false << QList<int>{0, 0, 0};
    }
    // The same link and contact three times: three records each, numbered by the count the list had when each was
    // added.
    void orderIndexIsTheCurrentCount()
    {
        QFETCH(bool, reloadBetween);
        QFETCH(QList<int>, indexes);
        FavoritesDataService service(m_store.get());
        QSignalSpy published(&service, &FavoritesDataService::savedFavoriteTelcosChanged);
        for (int i = 0; i < 3; ++i) {
            service.addFavoriteTelco(u"x"_qs, u"meet"_qs, u"https://meet.google.com/abc"_qs);
            service.addFavoriteContact(u"A"_qs, u"B"_qs, u"id"_qs);
            if (reloadBetween) {
                reload(service);
            }
        }
        QCOMPARE(service.savedFavoriteTelcos().size(), reloadBetween ? 3 : 0); // an add does not reload
        reload(service);
        QCOMPARE(published.size(), reloadBetween ? 4 : 1);
        const auto index = [](const auto &record) { return QString::number(record.orderIndex()); };
        QStringList expected;
        for (int i : indexes) {
            expected.append(QString::number(i));
        }
        QCOMPARE(project(service.savedFavoriteTelcos(), index), expected);
        QCOMPARE(project(service.savedFavoriteContacts(), index), expected);
    }

    void favoriteContactsByIdentifier()
    {
        FavoritesDataService service(m_store.get());
        for (const auto &[given, id] : {std::pair{u"A"_qs, u"abc"_qs}, std::pair{u"C"_qs, u"ABC"_qs},
                                        std::pair{u"T"_qs, u"twice"_qs}, std::pair{u"T"_qs, u"twice"_qs}}) {
            service.addFavoriteContact(given, u"B"_qs, id);
        }
        QCOMPARE(service.favoriteContacts(u"abc"_qs).size(), 1);
        QCOMPARE(service.favoriteContacts(u"ABC"_qs).at(0)->givenName(), u"C"_qs);
        QVERIFY(service.favoriteContacts(u"ab"_qs).isEmpty());
        service.removeFavoriteContact(u"twice"_qs); // every copy
        service.removeFavoriteContact(u"missing"_qs);
        service.fetchFavoriteContacts();
        QCOMPARE(project(service.savedFavoriteContacts(), [](const auto &c) { return c.contactID(); }),
                 (QStringList{u"abc"_qs, u"ABC"_qs}));
        QCOMPARE(StoreProbe::scalar(storeFile(), u"SELECT count(*) FROM FavoriteContactEntity"_qs), 2);
    }

    // A new service lists what is stored (saved actions never); deleting all is seen at the next reload.
    void listsAndDeleteAll()
    {
        {
            FavoritesDataService writer(m_store.get());
            writer.addFavoriteTelco(u"a"_qs, u"zoom"_qs, u"https://zoom.us/j/1"_qs);
            writer.addFavoriteTelco(u"b"_qs, u"zoom"_qs, u"https://zoom.us/j/2"_qs);
            writer.addFavoriteContact(u"Ana"_qs, u"García"_qs, u"C1"_qs);
        }
        m_store->viewContext().insertNewObject<FavoriteActionEntity>()->setActionValue(u"600"_qs);
        m_store->save();
        FavoritesDataService service(m_store.get());
        QCOMPARE(&service.contactStore(), &ContactStoreManager::shared());
        QCOMPARE(&service.contactStore().contactStore(), &addressBook->store);
        QCOMPARE(project(service.savedFavoriteTelcos(), [](const auto &t) { return t.telcoName(); }),
                 (QStringList{u"a"_qs, u"b"_qs}));
        QCOMPARE(project(service.savedFavoriteContacts(), [](const auto &c) { return c.familyName(); }),
                 QStringList{u"García"_qs});
        QVERIFY(service.savedFavoriteActions().isEmpty());
        service.deleteAllFavoriteTelcos();
        service.deleteAllFavoriteContacts();
        QCOMPARE(service.savedFavoriteTelcos().size(), 2); // the caller reloads
        reload(service);
        QVERIFY(service.savedFavoriteTelcos().isEmpty());
        QVERIFY(service.savedFavoriteContacts().isEmpty());
        QCOMPARE(StoreProbe::scalar(storeFile(), u"SELECT count(*) FROM FavoriteTelcoEntity"_qs), 0);

        // Nothing left to delete: no save, which a read-only store would have refused with a line.
        m_store.reset();
        CoreDataManager readOnly(storeFile(), PersistentContainer::OpenMode::ReadOnly);
        FavoritesDataService empty(&readOnly);
        Trace::Capture capture;
        empty.deleteAllFavoriteTelcos();
        empty.deleteAllFavoriteContacts();
        QVERIFY(capture.lines().isEmpty());
    }

    void fetchFailuresKeepLists_data()
    {
        QTest::addColumn<QString>("table");
        QTest::addColumn<QString>("line");
        QTest::newRow("telcos") << u"FavoriteTelcoEntity"_qs
                                << u"- Couldn't fetch saved favorite telcos:no such table"_qs;
        QTest::newRow("contacts") << u"FavoriteContactEntity"_qs
                                  << u"- Couldn't fetch saved favorite Cotnacts:no such table"_qs;
    }
    void fetchFailuresKeepLists()
    {
        QFETCH(QString, table);
        QFETCH(QString, line);
        FavoritesDataService service(m_store.get());
        service.addFavoriteTelco(u"a"_qs, u"zoom"_qs, u"https://zoom.us/j/1"_qs);
        service.addFavoriteContact(u"A"_qs, u"B"_qs, u"c1"_qs);
        reload(service);
        QCOMPARE(StoreProbe::scalar(storeFile(), u"DROP TABLE "_qs + table), 0);
        Trace::Capture capture;
        reload(service);
        QCOMPARE(capture.lines().size(), 2);
        QVERIFY2(capture.lines().at(1).startsWith(line), qPrintable(capture.lines().at(1)));
        QCOMPARE(service.savedFavoriteTelcos().size(), 1);
        QCOMPARE(service.savedFavoriteContacts().size(), 1);
    }

    // The link editor: any text that is not empty is accepted (the flags only colour the fields, a save is never
    // refused); a new link takes the kind its address is recognised as, an edited one keeps its kind.
    void linkEditor_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("address");
        QTest::addColumn<bool>("nameValid");
        QTest::addColumn<bool>("addressValid");
        QTest::addColumn<QString>("kind");
        QTest::newRow("zoom") << u"Standup"_qs << u"https://acme.zoom.us/j/123"_qs << true << true << u"zoom"_qs;
        QTest::newRow("meet") << u"1:1"_qs << u"https://meet.google.com/abc-defg-hij"_qs << true << true << u"meet"_qs;
        QTest::newRow("another site") << u"x"_qs << u"https://example.com/zoom"_qs << true << true
                                      << u"not recognized"_qs;
        QTest::newRow("blanks") << u" "_qs << u" "_qs << true << true << u"not recognized"_qs;
        QTest::newRow("empty: refused, saved") << QString() << QString() << false << false << u"not recognized"_qs;
    }
    void linkEditor()
    {
        QFETCH(QString, name);
        QFETCH(QString, address);
        QFETCH(bool, nameValid);
        QFETCH(bool, addressValid);
        QFETCH(QString, kind);
        FavoritesDataService service(m_store.get());
        FavoriteTelcoEditor editor;
        editor.setService(&service);
        editor.setTelcoName(name);
        editor.setTelcoValue(address);
        QCOMPARE(editor.telcoNameIsValid(), nameValid);
        QCOMPARE(editor.telcoURLIsValid(), addressValid);
        editor.save();
        service.fetchFavoriteTelcos();
        QCOMPARE(service.savedFavoriteTelcos().size(), 1);
        const auto saved = service.savedFavoriteTelcos().at(0);
        QCOMPARE((QStringList{saved->telcoName(), saved->telcoValue(), saved->telcoType()}),
                 (QStringList{name, address, kind}));

        editor.setRecord(QVariant::fromValue(saved));
        editor.setProperty("isEditMode", true);
        editor.setTelcoValue(u"https://meet.jit.si/Other"_qs);
        editor.save();
        service.fetchFavoriteTelcos();
        QCOMPARE(project(service.savedFavoriteTelcos(),
                         [](const auto &t) -> QString { return t.telcoValue() + t.telcoType(); }),
                 QStringList{u"https://meet.jit.si/Other"_qs + kind});
    }

private:
    static void reload(FavoritesDataService &service)
    {
        service.fetchFavoriteTelcos();
        service.fetchFavoriteContacts();
    }
    QString storeFile() const { return m_dir->path() + u"/Telverra.sqlite"; }
    std::optional<QTemporaryDir> m_dir;
    std::unique_ptr<CoreDataManager> m_store;
};

QTEST_GUILESS_MAIN(tst_FavoritesDataService)
#include "tst_FavoritesDataService.moc"
