#include "common/TextFolding.h"
#include "common/Trace.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "support/TestHome.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <numeric>

#include <sys/stat.h>

namespace {

QByteArray card(const QString &family, const QByteArray &more = {})
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + family.toUtf8() + ";;;;\r\n" + more + "END:VCARD\r\n";
}

template<typename List>
QStringList familyNames(const List &contacts)
{
    QStringList names;
    for (const auto &contact : contacts) {
        if constexpr (std::is_same_v<List, QList<Contact>>) {
            names.append(contact.contact().familyName);
        } else {
            names.append(contact->familyName);
        }
    }
    return names;
}

// A container whose contacts cannot be read: a failure no folder can be made to show to the superuser the tests
// run as, so it is simulated around the real store.
class OneFailingContainer : public VCardDirectoryStore
{
public:
    using VCardDirectoryStore::VCardDirectoryStore;
    ContactsResult unifiedContacts(const QString &container) override
    {
        if (container.endsWith(u"/broken")) {
            return {{}, u"The address book cannot be read."_qs};
        }
        return VCardDirectoryStore::unifiedContacts(container);
    }
};

// The address book as the window reads it.
struct Service
{
    explicit Service(ContactStore &store)
        : manager(store)
        , service(&manager)
    {}
    ContactStoreManager manager;
    ContactsDataService service;
};

} // namespace

class tst_ContactsDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init() { m_home = std::make_unique<TestHome>(), m_root = m_home->dataHome() + u"/contacts"; }
    void cleanup() { m_home.reset(); }

    void rootsContainersAndFiles()
    {
        m_home->writeFile(u".config/khard/khard.conf"_qs,
                          "[general]\ndebug = no\n[addressbooks]\n[[family]]\npath = ~/.contacts/family/\n"
                          "[[work]]\npath = $HOME/.contacts/work\n[contact table]\ndisplay = first_name\n");
        QCOMPARE(VCardDirectoryStore::defaultRoots(), (QStringList{u"book:"_qs + m_home->path() + u"/.contacts/family",
                                                                   u"book:"_qs + m_home->path() + u"/.contacts/work",
                                                                   m_root, m_home->dataHome() + u"/kpeoplevcard"}));
        m_home->writeFile(u".contacts/family/a.vcf"_qs, card(u"Family"_qs));
        m_home->writeFile(u".local/share/contacts/own.vcf"_qs, card(u"Own"_qs));
        // Which files of a book are read.
        const QString book = m_home->dataHome() + u"/kpeoplevcard/kdeconnect-phone";
        // A card's family name is its file's name.
        for (const char *file : {"a.vcf", "UPPER.VCF", "c.vcard", ".hidden.vcf", "notes.txt", "d.vcf.tmp"}) {
            m_home->writeFile(u".local/share/kpeoplevcard/kdeconnect-phone/"_qs + QLatin1StringView(file),
                              card(QString::fromLatin1(file)));
        }
        m_home->writeFile(u"elsewhere/linked.vcf"_qs, card(u"b-link.vcf"_qs));
        QVERIFY(QFile::link(m_home->path() + u"/elsewhere/linked.vcf", book + u"/b-link.vcf"));
        QVERIFY(QFile::link(u"/dev/zero"_qs, book + u"/zero.vcf"));                    // never read: it would not end
        QVERIFY(QFile::link(m_home->path() + u"/missing.vcf", book + u"/gone.vcf"));   // dangling
        QCOMPARE(mkfifo(QFile::encodeName(book + u"/pipe.vcf").constData(), 0600), 0); // never opened: it would block
        QVERIFY(QDir().mkpath(book + u"/folder.vcf"));

        VCardDirectoryStore store;
        const auto containers = store.containers();
        QVERIFY(containers.error.isEmpty());
        QStringList names;
        for (const auto &container : containers.containers) {
            names.append(container.name);
        }
        QCOMPARE(names, (QStringList{u"family"_qs, u"contacts"_qs, u"kdeconnect-phone"_qs}));
        const ContactStore::ContactsResult result = store.unifiedContacts(containers.containers.at(2).identifier);
        QVERIFY(result.error.isEmpty());
        QCOMPARE(familyNames(result.contacts),
                 (QStringList{u"UPPER.VCF"_qs, u"a.vcf"_qs, u"b-link.vcf"_qs, u"c.vcard"_qs}));
    }

    void aFolderReachedTwiceIsOneContainer_data()
    {
        QTest::addColumn<QByteArray>("khardPath"); // the book khard's configuration names
        QTest::addColumn<QString>("link");         // a link made in the contacts folder to the book, when not empty
        QTest::newRow("khard's book lies in the contacts folder")
            << QByteArray("~/.local/share/contacts/people") << QString();
        QTest::newRow("written another way") << QByteArray("$HOME/.local/share/contacts//people/") << QString();
        QTest::newRow("a link to khard's book") << QByteArray("~/books/people") << u"people"_qs;
    }

    void aFolderReachedTwiceIsOneContainer()
    {
        QFETCH(QByteArray, khardPath);
        QFETCH(QString, link);
        m_home->writeFile(u".config/khard/khard.conf"_qs, "[addressbooks]\n[[people]]\npath = " + khardPath + '\n');
        const QString book = link.isEmpty() ? u".local/share/contacts/people"_qs : u"books/people"_qs;
        m_home->writeFile(book + u"/ana.vcf", card(u"García"_qs));
        if (!link.isEmpty()) {
            QVERIFY(QDir().mkpath(m_root));
            QVERIFY(QFile::link(m_home->path() + u'/' + book, m_root + u'/' + link));
        }
        VCardDirectoryStore store;
        QCOMPARE(store.containers().containers.size(), 1);
        Service read(store);
        QTRY_VERIFY(read.service.hasLoaded());
        QCOMPARE(familyNames(read.service.allContacts()), QStringList{u"García"_qs});
    }

    void aLargeBookKeepsNameOrder()
    {
        // Large books are read in several ranges at once; the result must not show it.
        QStringList names;
        for (int i = 0; i < 1500; ++i) {
            names.append(u"F"_qs + QString::number(i).rightJustified(5, u'0'));
            m_home->writeFile(u".local/share/contacts/big/"_qs + names.last() + u".vcf", card(names.last()));
        }
        VCardDirectoryStore store(QStringList{m_root});
        QCOMPARE(familyNames(store.unifiedContacts(m_root + u"/big").contacts), names);
    }

    void accessMakesTheAddressBook()
    {
        VCardDirectoryStore store;
        QCOMPARE(store.authorizationStatus(), ContactStore::AuthorizationStatus::notDetermined);
        QList<ContactStoreManager::AccessResult> answers;
        ContactStoreManager(store).requestAccess([&](const auto &result) { answers.append(result); });
        QCOMPARE(answers.size(), 1);
        QCOMPARE(std::get<bool>(answers.at(0)), true);
        QVERIFY(QFileInfo(m_root).isDir());
        QCOMPARE(store.authorizationStatus(), ContactStore::AuthorizationStatus::authorized);
        // A root that exists but cannot be read as a folder.
        m_home->writeFile(u".local/share/kpeoplevcard"_qs, "not a folder");
        QCOMPARE(VCardDirectoryStore().authorizationStatus(), ContactStore::AuthorizationStatus::denied);

        // The folder cannot be made, its parent being a file: the error is delivered, then the refusal.
        m_home->writeFile(u"blocked"_qs, "a file");
        VCardDirectoryStore blocked(QStringList{m_home->path() + u"/blocked/contacts"});
        answers.clear();
        ContactStoreManager(blocked).requestAccess([&](const auto &result) { answers.append(result); });
        QCOMPARE(answers.size(), 2);
        QCOMPARE(std::get<ContactStoreManagerError>(answers.at(0)), ContactStoreManagerError::permissionError());
        QCOMPARE(std::get<bool>(answers.at(1)), false);
        // The service publishes the error and still starts a fetch, which finds nothing.
        Service read(blocked);
        QTRY_VERIFY(read.service.permissionError().has_value());
        QCOMPARE(*read.service.permissionError(), ContactStoreManagerError::permissionError());
        QTRY_VERIFY(read.service.hasLoaded());
        QVERIFY(read.service.allContacts().isEmpty());
    }

    void sortedByFoldedFamilyName()
    {
        m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"álvarez"_qs) + card(u"Zapata"_qs) + card({}) +
                                                                   card(u"Alvarez"_qs) + card(u"Álvarez"_qs));
        m_home->writeFile(u".local/share/contacts/a/1.vcf"_qs, card(u"alvarez"_qs));
        VCardDirectoryStore store;
        Service read(store);
        QTRY_COMPARE(read.service.allContacts().size(), 6);
        // Empty first; upper case before lower case; equal folded names keep container, then file order.
        QCOMPARE(familyNames(read.service.allContacts()),
                 (QStringList{QString(), u"Alvarez"_qs, u"Álvarez"_qs, u"Zapata"_qs, u"alvarez"_qs, u"álvarez"_qs}));

        // Large lists are sorted in two halves and merged: equal names must still keep their order across the halves.
        const QStringList names = {u"Zapata"_qs, u"álvarez"_qs, u"Alvarez"_qs, u"Álvarez"_qs, QString(), u"Núñez"_qs};
        QList<SharedVCardContact> contacts;
        for (int i = 0; i < 9000; ++i) {
            VCardContact contact;
            contact.familyName = names.at((i * 7 + i / 13) % names.size());
            contacts.append(std::make_shared<const VCardContact>(std::move(contact)));
        }
        std::vector<qsizetype> expected(static_cast<size_t>(contacts.size()));
        std::iota(expected.begin(), expected.end(), qsizetype{0});
        std::stable_sort(expected.begin(), expected.end(), [&contacts](qsizetype a, qsizetype b) {
            return foldDiacritics(contacts.at(a)->familyName) < foldDiacritics(contacts.at(b)->familyName);
        });
        QVERIFY(ContactsDataService::familyNameOrder(contacts) == expected);
        // Folding keeps case and the letters that have no decomposition, beyond the BMP too.
        QCOMPARE(foldDiacritics(u"Zapata Ñúñez ÉLODIE élodie ǺǍ ệ Łódź Øre Æsir ß Άλφα Ωμέγα 𝐀é"_qs),
                 u"Zapata Nunez ELODIE elodie AA e Łodz Øre Æsir ß Αλφα Ωμεγα 𝐀e"_qs);
    }

    void refetchOnChange()
    {
        m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"First"_qs));
        VCardDirectoryStore store;
        Service read(store);
        QTRY_COMPARE(read.service.allContacts().size(), 1);
        QTRY_VERIFY(store.isWatching());

        // Written the way sync tools write: a temporary file, then renamed into place.
        m_home->writeFile(u".local/share/contacts/b/2.vcf.tmp"_qs, card(u"Second"_qs));
        QVERIFY(QFile::rename(m_root + u"/b/2.vcf.tmp", m_root + u"/b/2.vcf"));
        QTRY_COMPARE_WITH_TIMEOUT(read.service.allContacts().size(), 2, 5000);
        // Edited in place.
        m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"Renamed"_qs));
        QTRY_COMPARE_WITH_TIMEOUT(familyNames(read.service.allContacts()), (QStringList{u"Renamed"_qs, u"Second"_qs}),
                                  5000);
        // A new address book.
        m_home->writeFile(u".local/share/contacts/c/3.vcf"_qs, card(u"Third"_qs));
        QTRY_COMPARE_WITH_TIMEOUT(read.service.allContacts().size(), 3, 5000);
    }

    // What the window shows when the address book cannot be read, in whole or in part.
    void failures_data()
    {
        QTest::addColumn<bool>("fileRoot");     // a root that is a file, whose containers cannot be listed
        QTest::addColumn<QStringList>("shown"); // family names; the books "good" (these) and "broken" when not empty
        QTest::addColumn<QString>("error");     // how its description starts
        QTest::addColumn<QString>("trace");
        QTest::newRow("no containers") << false << QStringList() << QString() << QString();
        QTest::newRow("the containers cannot be listed")
            << true << QStringList()
            << u"💥! Error accessing container: %1. Please go to settings and allow the app to access contacts."_qs
            << u"- Error fetching containers"_qs;
        QTest::newRow("one container fails")
            << false << QStringList{u"Kept"_qs} << u"💥! Error fetching contacts: The address book cannot be read."_qs
            << u"- Error fetching contacts from containers"_qs;
    }

    void failures()
    {
        QFETCH(bool, fileRoot);
        QFETCH(QStringList, shown);
        QFETCH(QString, error);
        QFETCH(QString, trace);
        QVERIFY(QDir().mkpath(m_root));
        if (!shown.isEmpty()) {
            m_home->writeFile(u".local/share/contacts/broken/1.vcf"_qs, card(u"Lost"_qs));
            m_home->writeFile(u".local/share/contacts/good/1.vcf"_qs, card(shown.at(0)));
        }
        const QString file = m_home->writeFile(u"file-root"_qs, "not a folder");
        OneFailingContainer store(fileRoot ? QStringList{m_root, file} : QStringList{m_root});
        Trace::Capture capture;
        Service read(store);
        QTRY_VERIFY(read.service.hasLoaded());
        QCOMPARE(familyNames(read.service.allContacts()), shown);
        QTRY_COMPARE(read.service.permissionError().has_value(), !error.isEmpty());
        if (!error.isEmpty()) {
            QCOMPARE(read.service.permissionError()->description(), error.replace(u"%1"_qs, store.containers().error));
        }
        QCOMPARE(capture.lines(), trace.isEmpty() ? QStringList() : QStringList{trace});
    }

    void fetchContactByIdentifier()
    {
        m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"Found"_qs, "FN:A Found\r\nUID:UID-1\r\n"));
        VCardDirectoryStore store;
        ContactStoreManager manager(store);
        const std::optional<Contact> found = manager.fetchContact(u"UID-1"_qs);
        QCOMPARE(found ? found->id() + u'|' + found->fullName() : QString(), u"UID-1|A Found"_qs);
        QVERIFY(found->phoneNumbers.isEmpty() && found->alleMails.isEmpty() && found->allAdresses.isEmpty());

        Trace::Capture capture;
        QVERIFY(!manager.fetchContact(u"missing"_qs).has_value());
        QCOMPARE(capture.lines(), QStringList{u"Error fetching contact with id: 'missing'from containers"_qs});
    }

    void findByPhoneNumber_data()
    {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("label");
        QTest::newRow("country prefix, blanks, dashes") << u"+34 600-111 222"_qs << u"Prefixed"_qs << u"mobile"_qs;
        QTest::newRow("without the prefix digits") << u"600111222"_qs << u"Bare"_qs << u"home"_qs;
        QTest::newRow("first label in alphabetical order") << u"(699) 000"_qs << u"Twice"_qs << u"home"_qs;
        QTest::newRow("the second number of a label") << u"701"_qs << u"Grouped"_qs << u"mobile"_qs;
        QTest::newRow("a number without a type") << u"700"_qs << u"Grouped"_qs << u"other"_qs;
        QTest::newRow("no match") << u"123"_qs << QString() << QString();
        QTest::newRow("empty") << QString() << QString() << QString();
    }

    void findByPhoneNumber()
    {
        QFETCH(QString, number);
        QFETCH(QString, family);
        QFETCH(QString, label);
        m_home->writeFile(
            u".local/share/contacts/b/1.vcf"_qs,
            "BEGIN:VCARD\nN:Prefixed;A\nTEL;TYPE=WORK:0034 600 111 222\nTEL;TYPE=CELL:+34.600.111.222\nEND:VCARD\n"
            "BEGIN:VCARD\nN:Bare;B\nTEL;TYPE=HOME:600 111 222\nEND:VCARD\n"
            "BEGIN:VCARD\nN:Twice;C\nTEL;TYPE=WORK:699000\nTEL;TYPE=HOME:699-000\nEND:VCARD\n"
            "BEGIN:VCARD\nN:Empty;D\nEND:VCARD\n"
            "BEGIN:VCARD\nN:Grouped;E\nTEL:700\nTEL;TYPE=CELL:701\nTEL;TYPE=CELL:702\nEND:VCARD\n");
        VCardDirectoryStore store;
        Service read(store);
        QTRY_COMPARE(read.service.allContacts().size(), 5);
        const auto match = read.service.findContact(number);
        QCOMPARE(match.contact ? match.contact->contact().familyName : QString(), family);
        QCOMPARE(match.label, label);
        QCOMPARE(match.number, family.isEmpty() ? QString() : number);
    }

private:
    std::unique_ptr<TestHome> m_home;
    QString m_root;
};

QTEST_GUILESS_MAIN(tst_ContactsDataService)
#include "tst_ContactsDataService.moc"
