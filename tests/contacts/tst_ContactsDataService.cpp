#include "common/TextFolding.h"
#include "common/Trace.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/VCardDirectoryStore.h"
#include "support/TestHome.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <numeric>

#include <sys/stat.h>

namespace {

QByteArray card(const QString &family, const QString &given, const QString &tel, const QString &uid = {})
{
    QByteArray text = "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + family.toUtf8() + ';' + given.toUtf8() + ";;;\r\n";
    if (!tel.isEmpty()) {
        text += "TEL;TYPE=CELL:" + tel.toUtf8() + "\r\n";
    }
    if (!uid.isEmpty()) {
        text += "UID:" + uid.toUtf8() + "\r\n";
    }
    return text + "END:VCARD\r\n";
}

QStringList familyNames(const QList<Contact> &contacts)
{
    QStringList names;
    for (const Contact &contact : contacts) {
        names.append(contact.contact().familyName);
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

} // namespace

class tst_ContactsDataService : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init();
    void cleanup();

    void rootsAndContainers();
    void aFolderReachedTwiceIsOneContainer_data();
    void aFolderReachedTwiceIsOneContainer();
    void whichFilesOfABookAreRead();
    void aLargeBookKeepsNameOrder();
    void authorization();
    void requestAccessMakesTheAddressBook();
    void requestAccessErrorIsDeliveredTwice();
    void sortedByFoldedFamilyName();
    void largeListsSortAsStably();
    void foldedNames_data();
    void foldedNames();
    void refetchOnChange();
    void noContainersMeansEmptyAndNoError();
    void containerListingFails();
    void oneContainerFails();
    void fetchContactByIdentifier();
    void labelGroupings();
    void findByPhoneNumber_data();
    void findByPhoneNumber();
    void errorTexts();

private:
    std::unique_ptr<TestHome> m_home;
    QString m_root;
};

void tst_ContactsDataService::init()
{
    m_home = std::make_unique<TestHome>();
    m_root = m_home->dataHome() + u"/contacts";
}

void tst_ContactsDataService::cleanup()
{
    m_home.reset();
}

void tst_ContactsDataService::rootsAndContainers()
{
    m_home->writeFile(u".config/khard/khard.conf"_qs,
                      "[general]\ndebug = no\n[addressbooks]\n[[family]]\npath = ~/.contacts/family/\n"
                      "[[work]]\npath = $HOME/.contacts/work\n[contact table]\ndisplay = first_name\n");
    QCOMPARE(VCardDirectoryStore::defaultRoots(), (QStringList{u"book:"_qs + m_home->path() + u"/.contacts/family",
                                                               u"book:"_qs + m_home->path() + u"/.contacts/work",
                                                               m_root, m_home->dataHome() + u"/kpeoplevcard"}));

    m_home->writeFile(u".contacts/family/a.vcf"_qs, card(u"Family"_qs, u"A"_qs, u"1"_qs));
    m_home->writeFile(u".local/share/contacts/own.vcf"_qs, card(u"Own"_qs, u"B"_qs, u"2"_qs));
    m_home->writeFile(u".local/share/kpeoplevcard/kdeconnect-phone/c.vcf"_qs, card(u"Phone"_qs, u"C"_qs, u"3"_qs));
    m_home->writeFile(u".local/share/kpeoplevcard/kdeconnect-phone/c.vcf.tmp"_qs, card(u"Tmp"_qs, u"D"_qs, u"4"_qs));
    VCardDirectoryStore store;
    const auto containers = store.containers();
    QVERIFY(containers.error.isEmpty());
    QStringList names;
    for (const auto &container : containers.containers) {
        names.append(container.name);
    }
    QCOMPARE(names, (QStringList{u"family"_qs, u"contacts"_qs, u"kdeconnect-phone"_qs}));
    const auto phone = store.unifiedContacts(containers.containers.at(2).identifier);
    QCOMPARE(phone.contacts.size(), 1); // the .tmp file is not read
    QCOMPARE(phone.contacts.at(0)->familyName, u"Phone"_qs);
}

void tst_ContactsDataService::aFolderReachedTwiceIsOneContainer_data()
{
    QTest::addColumn<QByteArray>("khardPath"); // the book khard's configuration names
    QTest::addColumn<QString>("link");         // a link made in the contacts folder to the book, when not empty
    QTest::newRow("khard's book lies in the contacts folder")
        << QByteArray("~/.local/share/contacts/people") << QString();
    QTest::newRow("written another way") << QByteArray("$HOME/.local/share/contacts//people/") << QString();
    QTest::newRow("a link to khard's book") << QByteArray("~/books/people") << u"people"_qs;
}

void tst_ContactsDataService::aFolderReachedTwiceIsOneContainer()
{
    QFETCH(QByteArray, khardPath);
    QFETCH(QString, link);
    m_home->writeFile(u".config/khard/khard.conf"_qs, "[addressbooks]\n[[people]]\npath = " + khardPath + '\n');
    const QString book = link.isEmpty() ? QString(m_root + u"/people") : QString(m_home->path() + u"/books/people");
    QVERIFY(QDir().mkpath(book));
    m_home->writeFile(QDir(m_home->path()).relativeFilePath(book) + u"/ana.vcf",
                      card(u"García"_qs, u"Ana"_qs, u"1"_qs));
    if (!link.isEmpty()) {
        QVERIFY(QDir().mkpath(m_root));
        QVERIFY(QFile::link(book, m_root + u'/' + link));
    }
    VCardDirectoryStore store;
    QCOMPARE(store.containers().containers.size(), 1);
    ContactStoreManager manager(store);
    ContactsDataService service(&manager);
    QTRY_VERIFY(service.hasLoaded());
    QCOMPARE(familyNames(service.allContacts()), QStringList{u"García"_qs});
}

void tst_ContactsDataService::whichFilesOfABookAreRead()
{
    const QString book = m_root + u"/book";
    m_home->writeFile(u".local/share/contacts/book/a.vcf"_qs, card(u"Plain"_qs, u"A"_qs, {}));
    m_home->writeFile(u".local/share/contacts/book/UPPER.VCF"_qs, card(u"Upper"_qs, u"B"_qs, {}));
    m_home->writeFile(u".local/share/contacts/book/c.vcard"_qs, card(u"Vcard"_qs, u"C"_qs, {}));
    m_home->writeFile(u".local/share/contacts/book/.hidden.vcf"_qs, card(u"Hidden"_qs, u"D"_qs, {}));
    m_home->writeFile(u".local/share/contacts/book/notes.txt"_qs, card(u"Text"_qs, u"E"_qs, {}));
    m_home->writeFile(u".local/share/contacts/book/d.vcf.tmp"_qs, card(u"Temporary"_qs, u"F"_qs, {}));
    m_home->writeFile(u"elsewhere/linked.vcf"_qs, card(u"Linked"_qs, u"G"_qs, {}));
    QVERIFY(QFile::link(m_home->path() + u"/elsewhere/linked.vcf", book + u"/b-link.vcf"));
    QVERIFY(QFile::link(u"/dev/zero"_qs, book + u"/zero.vcf"));                    // never read: it would not end
    QVERIFY(QFile::link(m_home->path() + u"/missing.vcf", book + u"/gone.vcf"));   // dangling
    QCOMPARE(mkfifo(QFile::encodeName(book + u"/pipe.vcf").constData(), 0600), 0); // never opened: it would block
    QVERIFY(QDir().mkpath(book + u"/folder.vcf"));

    VCardDirectoryStore store(QStringList{m_root});
    const ContactStore::ContactsResult result = store.unifiedContacts(book);
    QVERIFY(result.error.isEmpty());
    QStringList read;
    for (const SharedVCardContact &contact : result.contacts) {
        read.append(contact->familyName);
    }
    QCOMPARE(read, (QStringList{u"Upper"_qs, u"Plain"_qs, u"Linked"_qs, u"Vcard"_qs}));
}

void tst_ContactsDataService::aLargeBookKeepsNameOrder()
{
    // Large books are read in several ranges at once; the result must not show it.
    const int count = 1500;
    for (int i = 0; i < count; ++i) {
        const QString name = QString::number(i).rightJustified(5, u'0');
        m_home->writeFile(u".local/share/contacts/big/"_qs + name + u".vcf", card(u"F"_qs + name, {}, {}));
    }
    VCardDirectoryStore store(QStringList{m_root});
    const ContactStore::ContactsResult result = store.unifiedContacts(m_root + u"/big");
    QCOMPARE(result.contacts.size(), count);
    for (int i = 0; i < count; ++i) {
        QCOMPARE(result.contacts.at(i)->familyName, u"F"_qs + QString::number(i).rightJustified(5, u'0'));
    }
}

void tst_ContactsDataService::authorization()
{
    QCOMPARE(VCardDirectoryStore().authorizationStatus(), ContactStore::AuthorizationStatus::notDetermined);
    QDir().mkpath(m_root);
    QCOMPARE(VCardDirectoryStore().authorizationStatus(), ContactStore::AuthorizationStatus::authorized);
    // A root that exists but cannot be read as a folder.
    m_home->writeFile(u".local/share/kpeoplevcard"_qs, "not a folder");
    QCOMPARE(VCardDirectoryStore().authorizationStatus(), ContactStore::AuthorizationStatus::denied);
}

void tst_ContactsDataService::requestAccessMakesTheAddressBook()
{
    VCardDirectoryStore store;
    ContactStoreManager manager(store);
    QList<ContactStoreManager::AccessResult> answers;
    manager.requestAccess([&](const ContactStoreManager::AccessResult &result) { answers.append(result); });
    QCOMPARE(answers.size(), 1);
    QCOMPARE(std::get<bool>(answers.at(0)), true);
    QVERIFY(QFileInfo(m_root).isDir());
    QCOMPARE(store.authorizationStatus(), ContactStore::AuthorizationStatus::authorized);
}

void tst_ContactsDataService::requestAccessErrorIsDeliveredTwice()
{
    // The folder cannot be made: its parent is a file.
    m_home->writeFile(u"blocked"_qs, "a file");
    VCardDirectoryStore store(QStringList{m_home->path() + u"/blocked/contacts"});
    ContactStoreManager manager(store);
    QList<ContactStoreManager::AccessResult> answers;
    manager.requestAccess([&](const ContactStoreManager::AccessResult &result) { answers.append(result); });
    QCOMPARE(answers.size(), 2);
    QCOMPARE(std::get<ContactStoreManagerError>(answers.at(0)), ContactStoreManagerError::permissionError());
    QCOMPARE(std::get<bool>(answers.at(1)), false);

    // The service publishes the error and still starts a fetch, which finds nothing.
    ContactsDataService service(&manager);
    QSignalSpy published(&service, &ContactsDataService::allContactsChanged);
    QTRY_VERIFY(service.permissionError().has_value());
    QCOMPARE(service.permissionError()->id(), u"PermisionError"_qs);
    QTRY_COMPARE(published.size(), 1);
    QVERIFY(service.allContacts().isEmpty());
}

void tst_ContactsDataService::sortedByFoldedFamilyName()
{
    m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs,
                      card(u"álvarez"_qs, u"Ana"_qs, {}) + card(u"Zapata"_qs, u"Emiliano"_qs, {}) +
                          card(QString(), u"Nameless"_qs, {}) + card(u"Alvarez"_qs, u"Second"_qs, {}) +
                          card(u"Álvarez"_qs, u"Third"_qs, {}));
    m_home->writeFile(u".local/share/contacts/a/1.vcf"_qs, card(u"alvarez"_qs, u"First"_qs, {}));
    VCardDirectoryStore store;
    ContactStoreManager manager(store);
    ContactsDataService service(&manager);
    QTRY_COMPARE(service.allContacts().size(), 6);
    // Empty first; upper case before lower case; equal folded names keep container, then file order.
    QCOMPARE(familyNames(service.allContacts()),
             (QStringList{QString(), u"Alvarez"_qs, u"Álvarez"_qs, u"Zapata"_qs, u"alvarez"_qs, u"álvarez"_qs}));
}

void tst_ContactsDataService::largeListsSortAsStably()
{
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
}

void tst_ContactsDataService::foldedNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("folded");
    QTest::newRow("ASCII") << u"Zapata"_qs << u"Zapata"_qs;
    QTest::newRow("Spanish") << u"Ñúñez Álvarez"_qs << u"Nunez Alvarez"_qs;
    QTest::newRow("case kept") << u"ÉLODIE élodie"_qs << u"ELODIE elodie"_qs;
    QTest::newRow("letters without a decomposition stay") << u"Łódź Øre Æsir ß"_qs << u"Łodz Øre Æsir ß"_qs;
    QTest::newRow("Latin Extended-B") << u"ǺǍ"_qs << u"AA"_qs;      // Ǻ Ǎ
    QTest::newRow("a letter with two marks") << u"ệ"_qs << u"e"_qs; // ệ
    QTest::newRow("combining marks") << u"José Muñoz"_qs << u"Jose Munoz"_qs;
    QTest::newRow("Greek") << u"Άλφα Ωμέγα"_qs << u"Αλφα Ωμεγα"_qs;
    QTest::newRow("beyond the BMP") << u"𝐀é"_qs << u"𝐀e"_qs;
}

void tst_ContactsDataService::foldedNames()
{
    QFETCH(QString, name);
    QFETCH(QString, folded);
    QCOMPARE(foldDiacritics(name), folded);
}

void tst_ContactsDataService::refetchOnChange()
{
    m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"First"_qs, u"A"_qs, u"1"_qs));
    VCardDirectoryStore store;
    ContactStoreManager manager(store);
    ContactsDataService service(&manager);
    QTRY_COMPARE(service.allContacts().size(), 1);
    QTRY_VERIFY(store.isWatching());

    // Written the way sync tools write: a temporary file, then renamed into place.
    m_home->writeFile(u".local/share/contacts/b/2.vcf.tmp"_qs, card(u"Second"_qs, u"B"_qs, u"2"_qs));
    QVERIFY(QFile::rename(m_root + u"/b/2.vcf.tmp", m_root + u"/b/2.vcf"));
    QTRY_COMPARE_WITH_TIMEOUT(service.allContacts().size(), 2, 5000);

    // Edited in place.
    m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"Renamed"_qs, u"A"_qs, u"1"_qs));
    QTRY_COMPARE_WITH_TIMEOUT(familyNames(service.allContacts()), (QStringList{u"Renamed"_qs, u"Second"_qs}), 5000);

    // A new address book.
    m_home->writeFile(u".local/share/contacts/c/3.vcf"_qs, card(u"Third"_qs, u"C"_qs, u"3"_qs));
    QTRY_COMPARE_WITH_TIMEOUT(service.allContacts().size(), 3, 5000);
}

void tst_ContactsDataService::noContainersMeansEmptyAndNoError()
{
    QDir().mkpath(m_root);
    VCardDirectoryStore store;
    ContactStoreManager manager(store);
    ContactsDataService service(&manager);
    QSignalSpy changed(&service, &ContactsDataService::allContactsChanged);
    QVERIFY(changed.wait(2000));
    QVERIFY(service.allContacts().isEmpty());
    QVERIFY(!service.permissionError().has_value());
}

void tst_ContactsDataService::containerListingFails()
{
    QDir().mkpath(m_root);
    m_home->writeFile(u"file-root"_qs, "not a folder");
    VCardDirectoryStore store(QStringList{m_root, m_home->path() + u"/file-root"});
    ContactStoreManager manager(store);
    Trace::Capture capture;
    QList<ContactStoreManager::FetchResult> results;
    manager.fetchAllContacts(std::nullopt, [&](const ContactStoreManager::FetchResult &r) { results.append(r); });
    QCOMPARE(capture.lines(), QStringList{u"- Error fetching containers"_qs});
    QCOMPARE(results.size(), 2);
    QCOMPARE(std::get<ContactStoreManagerError>(results.at(0)).errorCase(),
             ContactStoreManagerError::Case::containerError);
    QVERIFY(std::get<QList<SharedVCardContact>>(results.at(1)).isEmpty());
}

void tst_ContactsDataService::oneContainerFails()
{
    m_home->writeFile(u".local/share/contacts/broken/1.vcf"_qs, card(u"Lost"_qs, u"A"_qs, u"1"_qs));
    m_home->writeFile(u".local/share/contacts/good/1.vcf"_qs, card(u"Kept"_qs, u"B"_qs, u"2"_qs));
    OneFailingContainer store;
    ContactStoreManager manager(store);
    Trace::Capture capture;
    ContactsDataService service(&manager);
    QTRY_COMPARE(familyNames(service.allContacts()), QStringList{u"Kept"_qs});
    QTRY_VERIFY(service.permissionError().has_value());
    QCOMPARE(service.permissionError()->description(),
             u"💥! Error fetching contacts: The address book cannot be read."_qs);
    QCOMPARE(capture.lines(), QStringList{u"- Error fetching contacts from containers"_qs});
}

void tst_ContactsDataService::fetchContactByIdentifier()
{
    m_home->writeFile(u".local/share/contacts/b/1.vcf"_qs, card(u"Found"_qs, u"A"_qs, u"1"_qs, u"UID-1"_qs));
    VCardDirectoryStore store;
    ContactStoreManager manager(store);
    const std::optional<Contact> found = manager.fetchContact(u"UID-1"_qs);
    QVERIFY(found.has_value());
    QCOMPARE(found->id(), u"UID-1"_qs);
    QCOMPARE(found->fullName(), u"A Found"_qs);
    QVERIFY(found->phoneNumbers.isEmpty() && found->alleMails.isEmpty() && found->allAdresses.isEmpty());

    Trace::Capture capture;
    QVERIFY(!manager.fetchContact(u"missing"_qs).has_value());
    QCOMPARE(capture.lines(), QStringList{u"Error fetching contact with id: 'missing'from containers"_qs});
}

void tst_ContactsDataService::labelGroupings()
{
    VCardContact contact;
    contact.phoneNumbers = {{QString(), u"1"_qs},
                            {u"_$!<Mobile>!$_"_qs, u"2"_qs},
                            {u"Casa"_qs, u"3"_qs},
                            {u"_$!<Mobile>!$_"_qs, u"4"_qs},
                            {u"_$!<Other>!$_"_qs, u"5"_qs}};
    contact.emailAddresses = {{u"_$!<Work>!$_"_qs, u"a@b.c"_qs}};
    const QMap<QString, QStringList> expected = {
        {u"other"_qs, {u"1"_qs, u"5"_qs}}, {u"mobile"_qs, {u"2"_qs, u"4"_qs}}, {u"Casa"_qs, {u"3"_qs}}};
    QCOMPARE(ContactLabels::phoneNumbersByLabel(contact), expected);
    QCOMPARE(ContactLabels::emailAddressesByLabel(contact), (QMap<QString, QStringList>{{u"work"_qs, {u"a@b.c"_qs}}}));
    QVERIFY(ContactLabels::phoneNumbersByLabel(VCardContact()).isEmpty());
}

void tst_ContactsDataService::findByPhoneNumber_data()
{
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("family");
    QTest::addColumn<QString>("label");
    QTest::newRow("country prefix, blanks, dashes") << u"+34 600-111 222"_qs << u"Prefixed"_qs << u"mobile"_qs;
    QTest::newRow("without the prefix digits") << u"600111222"_qs << u"Bare"_qs << u"home"_qs;
    QTest::newRow("first label in alphabetical order") << u"(699) 000"_qs << u"Twice"_qs << u"home"_qs;
    QTest::newRow("no match") << u"123"_qs << QString() << QString();
    QTest::newRow("empty") << QString() << QString() << QString();
}

void tst_ContactsDataService::findByPhoneNumber()
{
    QFETCH(QString, number);
    QFETCH(QString, family);
    QFETCH(QString, label);
    m_home->writeFile(
        u".local/share/contacts/b/1.vcf"_qs,
        "BEGIN:VCARD\nN:Prefixed;A\nTEL;TYPE=WORK:0034 600 111 222\nTEL;TYPE=CELL:+34.600.111.222\nEND:VCARD\n"
        "BEGIN:VCARD\nN:Bare;B\nTEL;TYPE=HOME:600 111 222\nEND:VCARD\n"
        "BEGIN:VCARD\nN:Twice;C\nTEL;TYPE=WORK:699000\nTEL;TYPE=HOME:699-000\nEND:VCARD\n"
        "BEGIN:VCARD\nN:Empty;D\nEND:VCARD\n");
    VCardDirectoryStore store;
    ContactStoreManager manager(store);
    ContactsDataService service(&manager);
    QTRY_COMPARE(service.allContacts().size(), 4);
    const auto match = service.findContact(number);
    if (family.isEmpty()) {
        QVERIFY(!match.contact.has_value());
        QCOMPARE(match.label, QString());
        QCOMPARE(match.number, QString());
        return;
    }
    QVERIFY(match.contact.has_value());
    QCOMPARE(match.contact->contact().familyName, family);
    QCOMPARE(match.label, label);
    QCOMPARE(match.number, number);
}

void tst_ContactsDataService::errorTexts()
{
    QCOMPARE(ContactStoreManagerError::fetchError(u"x"_qs).id(), u"FetchError"_qs);
    QCOMPARE(ContactStoreManagerError::containerError(u"x"_qs).description(),
             u"💥! Error accessing container: x. Please go to settings and allow the app to access contacts."_qs);
    QCOMPARE(ContactStoreManagerError::contactWithContactIDNotFound(u"x"_qs).id(), u"ContactWithContactIDNotFound"_qs);
    QCOMPARE(ContactStoreManagerError::contactWithContactIDNotFound(u"x"_qs).description(),
             u"💥! Error trying to find contact with specific ContactID: x."_qs);
    QCOMPARE(ContactStoreManagerError::permissionError().description(),
             u"💥! Permission error when attempting to access contact store. Please go to settings and allow the app to "
             u"access contacts."_qs);
}

QTEST_GUILESS_MAIN(tst_ContactsDataService)
#include "tst_ContactsDataService.moc"
