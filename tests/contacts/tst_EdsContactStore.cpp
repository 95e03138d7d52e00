// Evolution Data Server's address books as the application reads them: the real services, started by a private
// session bus in a throw-away home, written to through libebook as GNOME Contacts writes to them.

#include "contacts/CombinedContactStore.h"
#include "contacts/ContactStoreManager.h"
#include "contacts/ContactsDataService.h"
#include "contacts/EdsContactStore.h"
#include "contacts/VCardDirectoryStore.h"
#include "support/TestHome.h"

#include <libebook/libebook.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

const QString servicesFile = u"/usr/share/dbus-1/services/org.gnome.evolution.dataserver.Sources5.service"_s;
// A 1×1 PNG.
const QByteArray png = QByteArray::fromBase64(
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg==");

QByteArray card(const QByteArray &given, const QByteArray &family, const QByteArray &more = {})
{
    return "BEGIN:VCARD\r\nVERSION:3.0\r\nN:" + family + ';' + given + ";;;\r\nFN:" + given + ' ' + family + "\r\n" +
           more + "END:VCARD\r\n";
}

QString personal(const QString &uid)
{
    return EdsContactStore::identifier(u"system-address-book"_s, uid);
}

QString message(GError *error)
{
    const QString text = error ? QString::fromUtf8(error->message) : QString();
    g_clear_error(&error);
    return text;
}

} // namespace

class tst_EdsContactStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void records_data();
    void records();
    void booksReadAndFollowed_data();
    void booksReadAndFollowed();
    void commandLine_data();
    void commandLine();

private:
    // Through libebook, as GNOME Contacts writes.
    EBookClient *book(const QString &uid);
    QString addContact(const QString &bookUid, const QByteArray &vcard);
    QString createBook(const QString &name);
    /// A dbus-daemon with the given configuration option, and its address.
    static std::unique_ptr<QProcess> startBus(const QString &config, QString &address);
    bool m_servicesInstalled = false;

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<QProcess> m_bus;
    QString m_address;
    ESourceRegistry *m_registry = nullptr;
    QMap<QString, EBookClient *> m_clients;
    QString m_workBook;
    QString m_ana, m_luis, m_eva;
    std::unique_ptr<EdsContactStore> m_eds;
    std::unique_ptr<VCardDirectoryStore> m_folders;
    std::unique_ptr<CombinedContactStore> m_both;
    std::unique_ptr<ContactStoreManager> m_manager;
    std::unique_ptr<ContactsDataService> m_service;
};

std::unique_ptr<QProcess> tst_EdsContactStore::startBus(const QString &config, QString &address)
{
    auto bus = std::make_unique<QProcess>();
    bus->start(u"dbus-daemon"_s, {config, u"--print-address"_s, u"--nofork"_s});
    while (!bus->canReadLine()) {
        if (!bus->waitForReadyRead(10000)) {
            return nullptr;
        }
    }
    address = QString::fromLatin1(bus->readLine()).trimmed();
    return bus;
}

void tst_EdsContactStore::initTestCase()
{
    m_home = std::make_unique<TestHome>();
    m_home->writeFile(u".local/share/contacts/family/pedro.vcf"_s,
                      "BEGIN:VCARD\nVERSION:3.0\nUID:pedro\nN:Gil;Pedro;;;\nEND:VCARD\n");
    m_servicesInstalled = QFile::exists(servicesFile) && !QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty();
    if (!m_servicesInstalled) {
        return;
    }
    QVERIFY2(!EdsContactStore::defaultModule().isEmpty(), "built without Evolution Data Server (TELVERRA_EDS)");
    // The bus and the services it starts see the throw-away home, as this process does.
    m_bus = startBus(u"--session"_s, m_address);
    QVERIFY(m_bus);
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toLatin1());

    GError *error = nullptr;
    m_registry = e_source_registry_new_sync(nullptr, &error);
    QVERIFY2(m_registry, qPrintable(message(error)));
    m_workBook = createBook(u"Work"_s);
    QVERIFY(!m_workBook.isEmpty());
    // vCard 4's quoted type list and an embedded picture, which the personal book keeps as a file of its own.
    m_ana = addContact(
        u"system-address-book"_s,
        card("Ana", "García",
             "TEL;TYPE=\"home,fax\":+34 910 000 000\r\nPHOTO;ENCODING=b;TYPE=PNG:" + png.toBase64() + "\r\n"));
    m_luis = addContact(u"system-address-book"_s, card("Luis", "Ruiz", "TEL;TYPE=CELL:+34 600 222 333\r\n"));
    QVERIFY(!m_ana.isEmpty() && !m_luis.isEmpty() && !addContact(m_workBook, card("Marta", "Soler")).isEmpty());
}

void tst_EdsContactStore::cleanupTestCase()
{
    m_service.reset();
    m_manager.reset();
    m_both.reset();
    m_folders.reset();
    m_eds.reset();
    for (EBookClient *client : std::as_const(m_clients)) {
        g_object_unref(client);
    }
    g_clear_object(&m_registry);
    if (!m_bus) {
        return;
    }
    // The services this bus started end with it: each is stopped and waited for before the home goes.
    QList<uint> services;
    {
        QDBusConnection bus = QDBusConnection::connectToBus(m_address, u"cleanup"_s);
        const QStringList names = bus.interface()->registeredServiceNames();
        for (const QString &name : names) {
            const uint pid = bus.interface()->servicePid(name);
            if (name.startsWith(u':') && pid != 0 && pid != uint(QCoreApplication::applicationPid()) &&
                !services.contains(pid)) {
                services.append(pid);
            }
        }
    }
    QDBusConnection::disconnectFromBus(u"cleanup"_s);
    GDBusConnection *shared = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (shared) {
        g_dbus_connection_set_exit_on_close(shared, FALSE);
        g_object_unref(shared);
    }
    for (uint pid : std::as_const(services)) {
        ::kill(pid_t(pid), SIGTERM);
    }
    m_bus->terminate();
    m_bus->waitForFinished();
    for (uint pid : std::as_const(services)) {
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(u"/proc/"_s + QString::number(pid)), 20000);
    }
}

EBookClient *tst_EdsContactStore::book(const QString &uid)
{
    if (EBookClient *client = m_clients.value(uid)) {
        return client;
    }
    ESource *source = e_source_registry_ref_source(m_registry, uid.toUtf8().constData());
    if (!source) {
        return nullptr;
    }
    GError *error = nullptr;
    EClient *client = e_book_client_connect_sync(source, guint32(-1), nullptr, &error);
    g_object_unref(source);
    if (!client) {
        qWarning() << "cannot open" << uid << message(error);
        return nullptr;
    }
    m_clients.insert(uid, E_BOOK_CLIENT(client));
    return E_BOOK_CLIENT(client);
}

QString tst_EdsContactStore::addContact(const QString &bookUid, const QByteArray &vcard)
{
    EBookClient *client = book(bookUid);
    if (!client) {
        return {};
    }
    EContact *contact = e_contact_new_from_vcard(vcard.constData());
    gchar *uid = nullptr;
    GError *error = nullptr;
    const bool added =
        e_book_client_add_contact_sync(client, contact, E_BOOK_OPERATION_FLAG_NONE, &uid, nullptr, &error);
    g_object_unref(contact);
    if (!added) {
        qWarning() << "cannot add to" << bookUid << message(error);
        return {};
    }
    const QString result = QString::fromUtf8(uid);
    g_free(uid);
    return result;
}

QString tst_EdsContactStore::createBook(const QString &name)
{
    GError *error = nullptr;
    ESource *source = e_source_new(nullptr, nullptr, &error);
    e_source_set_display_name(source, name.toUtf8().constData());
    e_source_set_parent(source, "local-stub");
    e_source_backend_set_backend_name(E_SOURCE_BACKEND(e_source_get_extension(source, E_SOURCE_EXTENSION_ADDRESS_BOOK)),
                                      "local");
    GList *sources = g_list_append(nullptr, source);
    const bool created = e_source_registry_create_sources_sync(m_registry, sources, nullptr, &error);
    g_list_free(sources);
    const QString uid = QString::fromUtf8(e_source_get_uid(source));
    g_object_unref(source);
    if (!created) {
        qWarning() << "cannot create" << name << message(error);
        return {};
    }
    return uid;
}

// What the application keeps of a contact EDS hands over.
void tst_EdsContactStore::records_data()
{
    QTest::addColumn<QByteArray>("vcard");
    QTest::addColumn<QByteArray>("photoUri");
    QTest::addColumn<QString>("label"); // of the first number
    QTest::addColumn<QByteArray>("photo");

    const QByteArray ana = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pas-id-1\r\nN:García;Ana;;;\r\n";
    const QString picture = m_home->writeFile(u"photo.png"_s, png);
    const QString fifo = m_home->path() + u"/fifo.png";
    QVERIFY(::mkfifo(QFile::encodeName(fifo).constData(), 0600) == 0);
    const QByteArray pictureUri = QUrl::fromLocalFile(picture).toEncoded();

    QTest::newRow("vCard 4 type list in quotes") << ana + "TEL;TYPE=\"home,fax\":+34 910\r\nEND:VCARD\r\n"
                                                 << QByteArray() << u"home fax"_s << QByteArray();
    QTest::newRow("picture kept as a local file") << ana + "TEL;TYPE=CELL:+34 600\r\nEND:VCARD\r\n"
                                                  << pictureUri << u"mobile"_s << png;
    QTest::newRow("picture elsewhere not fetched")
        << ana + "TEL:+34 600\r\nEND:VCARD\r\n"
        << QByteArray("http://127.0.0.1:9/photo.png") << u""_s << QByteArray();
    QTest::newRow("picture on another host not read")
        << ana + "TEL:+34 600\r\nEND:VCARD\r\n"
        << QByteArray("file://elsewhere") + picture.toUtf8() << u""_s << QByteArray();
    QTest::newRow("a FIFO is never waited on") << ana + "TEL:+34 600\r\nEND:VCARD\r\n"
                                               << QUrl::fromLocalFile(fifo).toEncoded() << u""_s << QByteArray();
    QTest::newRow("the card's own picture wins")
        << ana + "TEL:+34 600\r\nPHOTO;ENCODING=b;TYPE=PNG:" + png.toBase64() + "\r\nEND:VCARD\r\n"
        << QByteArray("file:///nonexistent.png") << u""_s << png;
    QTest::newRow("not a card") << QByteArray("garbage") << QByteArray() << QString() << QByteArray();
}

void tst_EdsContactStore::records()
{
    QFETCH(QByteArray, vcard);
    QFETCH(QByteArray, photoUri);
    QFETCH(QString, label);
    QFETCH(QByteArray, photo);
    const std::optional<VCardContact> contact =
        EdsContactStore::record(u"system-address-book"_s, {u"pas-id-1"_s, vcard, photoUri});
    QCOMPARE(contact.has_value(), !label.isNull());
    if (contact) {
        QCOMPARE(contact->identifier, u"eds:system-address-book/pas-id-1"_s);
        QCOMPARE(contact->familyName, u"García"_s);
        QCOMPARE(ContactLabels::localizedString(contact->phoneNumbers.value(0).label), label);
        QCOMPARE(contact->thumbnailImageData, photo);
    }
}

// The books are read into the address book beside the vCard folders, and every change in them follows, in order.
void tst_EdsContactStore::booksReadAndFollowed_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<QStringList>("expected"); // the EDS contacts after it, by their names

    QTest::newRow("both books read") << QString() << QStringList{u"Ana"_s, u"Luis"_s, u"Marta"_s};
    QTest::newRow("a contact changed") << u"rename Luis"_s << QStringList{u"Ana"_s, u"Lucho"_s, u"Marta"_s};
    QTest::newRow("a contact removed") << u"remove Ana"_s << QStringList{u"Lucho"_s, u"Marta"_s};
    QTest::newRow("the book's service restarted, then a contact added")
        << u"restart, add Eva"_s << QStringList{u"Eva"_s, u"Lucho"_s, u"Marta"_s};
    QTest::newRow("a book disabled") << u"disable Work"_s << QStringList{u"Eva"_s, u"Lucho"_s};
}

void tst_EdsContactStore::booksReadAndFollowed()
{
    QFETCH(QString, change);
    QFETCH(QStringList, expected);
    if (!m_servicesInstalled) {
        QSKIP("Evolution Data Server's services are not installed (Debian: evolution-data-server, dbus-daemon)");
    }
    if (!m_eds) {
        m_eds = std::make_unique<EdsContactStore>();
        m_folders = std::make_unique<VCardDirectoryStore>();
        m_both = std::make_unique<CombinedContactStore>(QList<ContactStore *>{m_folders.get(), m_eds.get()});
        m_manager = std::make_unique<ContactStoreManager>(*m_both);
        m_service = std::make_unique<ContactsDataService>(m_manager.get());
    }

    GError *error = nullptr;
    if (change == u"rename Luis") {
        EContact *luis = nullptr;
        QVERIFY(e_book_client_get_contact_sync(book(u"system-address-book"_s), m_luis.toUtf8().constData(), &luis,
                                               nullptr, &error));
        EContactName *name = e_contact_name_from_string("Lucho Ruiz");
        e_contact_set(luis, E_CONTACT_NAME, name);
        e_contact_set(luis, E_CONTACT_FULL_NAME, "Lucho Ruiz");
        e_contact_name_free(name);
        QVERIFY2(e_book_client_modify_contact_sync(book(u"system-address-book"_s), luis, E_BOOK_OPERATION_FLAG_NONE,
                                                   nullptr, &error),
                 qPrintable(message(error)));
        g_object_unref(luis);
    } else if (change == u"remove Ana") {
        QVERIFY2(e_book_client_remove_contact_by_uid_sync(book(u"system-address-book"_s), m_ana.toUtf8().constData(),
                                                          E_BOOK_OPERATION_FLAG_NONE, nullptr, &error),
                 qPrintable(message(error)));
    } else if (change == u"restart, add Eva") {
        QDBusConnection bus = QDBusConnection::connectToBus(m_address, u"restart"_s);
        const uint factory = bus.interface()->servicePid(u"org.gnome.evolution.dataserver.AddressBook10"_s);
        QDBusConnection::disconnectFromBus(u"restart"_s);
        QVERIFY(factory != 0);
        QCOMPARE(::kill(pid_t(factory), SIGTERM), 0);
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(u"/proc/"_s + QString::number(factory)), 20000);
        g_object_unref(m_clients.take(u"system-address-book"_s)); // its connection ended with the service
        m_eva = addContact(u"system-address-book"_s, card("Eva", "Vidal"));
        QVERIFY(!m_eva.isEmpty());
    } else if (change == u"disable Work") {
        ESource *work = e_source_registry_ref_source(m_registry, m_workBook.toUtf8().constData());
        QVERIFY(work);
        e_source_set_enabled(work, FALSE);
        QVERIFY2(e_source_write_sync(work, nullptr, &error), qPrintable(message(error)));
        g_object_unref(work);
    }

    auto edsNames = [this] {
        QStringList names;
        for (const Contact &contact : m_service->allContacts()) {
            if (contact.id().startsWith(u"eds:")) {
                names.append(contact.contact().givenName);
            }
        }
        names.sort();
        return names;
    };
    QTRY_COMPARE_WITH_TIMEOUT(edsNames(), expected, 30000);
    QVERIFY(m_service->contact(u"pedro"_s)); // the vCard folder's contact stays throughout
    if (!change.isEmpty()) {
        return;
    }
    QVERIFY(m_eds->isSettled());
    QCOMPARE(m_eds->unavailableReason(), QString());
    const QList<ContactStore::Container> containers = m_both->containers().containers;
    QCOMPARE(containers.size(), 3);
    QCOMPARE(containers[1].identifier, u"eds:system-address-book"_s);
    QCOMPARE(containers[1].name, u"Personal"_s);
    QCOMPARE(containers[2].identifier, u"eds:"_s + m_workBook);
    QCOMPARE(containers[2].name, u"Work"_s);
    // EDS moved Ana's picture into a file of its own, and kept her fax's type list quoted.
    const std::optional<Contact> ana = m_service->contact(personal(m_ana));
    QVERIFY(ana);
    QCOMPARE(ana->contact().thumbnailImageData, png);
    QCOMPARE(ContactLabels::phoneNumbersByLabel(ana->contact()).keys(), QStringList{u"home fax"_s});
    const std::optional<Contact> luis = m_service->findContact(u"+34 600 222 333"_s).contact;
    QVERIFY(luis);
    QCOMPARE(luis->id(), personal(m_luis));
    QCOMPARE(m_manager->fetchContact(luis->id())->contact().familyName, u"Ruiz"_s);
}

// telverra contacts: EDS's books beside the folders when EDS is on the bus, the folders alone and at once when it is
// not, and only the folder named by --contacts.
void tst_EdsContactStore::commandLine_data()
{
    QTest::addColumn<QString>("bus");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QStringList>("expected");

    const QString folder = m_home->path() + u"/.local/share/contacts/family";
    QStringList all{personal(m_luis), personal(m_eva), u"pedro"_s};
    all.sort();
    QTest::newRow("EDS on the bus") << u"eds"_s << QStringList() << all;
    QTest::newRow("a bus without EDS") << u"bare"_s << QStringList() << QStringList{u"pedro"_s};
    QTest::newRow("no bus") << u"none"_s << QStringList() << QStringList{u"pedro"_s};
    QTest::newRow("--contacts DIR") << u"eds"_s << QStringList{u"--contacts"_s, folder} << QStringList{u"pedro"_s};
}

void tst_EdsContactStore::commandLine()
{
    QFETCH(QString, bus);
    QFETCH(QStringList, arguments);
    QFETCH(QStringList, expected);
    if (!m_servicesInstalled) {
        QSKIP("Evolution Data Server's services are not installed (Debian: evolution-data-server, dbus-daemon)");
    }

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    std::unique_ptr<QProcess> bareBus;
    if (bus == u"bare") {
        const QString config = m_home->writeFile(
            u"bare.conf"_s,
            "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy "
            "context=\"default\"><allow send_destination=\"*\"/><allow own=\"*\"/></policy></busconfig>\n");
        QString address;
        bareBus = startBus(u"--config-file="_s + config, address);
        QVERIFY(bareBus);
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
    } else if (bus == u"none") {
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, u"unix:path=/nonexistent"_s);
    }
    QProcess telverra;
    telverra.setProcessEnvironment(environment);
    telverra.start(QStringLiteral(TELVERRA_EXECUTABLE), QStringList{u"contacts"_s, u"--json"_s} + arguments);
    QVERIFY(telverra.waitForFinished(60000));
    QCOMPARE(telverra.exitCode(), 0);
    QStringList ids;
    const QJsonArray listed = QJsonDocument::fromJson(telverra.readAllStandardOutput()).array();
    for (const QJsonValue &contact : listed) {
        ids.append(contact.toObject().value(u"id"_s).toString());
    }
    ids.sort();
    QCOMPARE(ids, expected);
    if (bareBus) {
        bareBus->terminate();
        bareBus->waitForFinished();
    }
}

QTEST_GUILESS_MAIN(tst_EdsContactStore)
#include "tst_EdsContactStore.moc"
