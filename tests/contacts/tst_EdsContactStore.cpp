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
const QString personalBook = u"system-address-book"_s;
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
    return EdsContactStore::identifier(personalBook, uid);
}

// Whether a libebook call succeeded; says why when it did not.
bool succeeded(bool result, GError *error)
{
    if (!result) {
        qWarning() << (error ? error->message : "failed");
    }
    g_clear_error(&error);
    return result;
}

// The address book as the window reads it: the vCard folders, then EDS's books.
struct AddressBook
{
    EdsContactStore eds;
    VCardDirectoryStore folders;
    CombinedContactStore both{{&folders, &eds}};
    ContactStoreManager manager{both};
    ContactsDataService service{&manager};
};

} // namespace

class tst_EdsContactStore : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase()
    {
        m_home = std::make_unique<TestHome>();
        m_home->writeFile(u".local/share/contacts/family/pedro.vcf"_s, card("Pedro", "Gil", "UID:pedro\r\n"));
        if (!QFile::exists(servicesFile) || QStandardPaths::findExecutable(u"dbus-daemon"_s).isEmpty()) {
            QSKIP("Evolution Data Server's services are not installed (Debian: evolution-data-server, dbus-daemon)");
        }
        QVERIFY2(!EdsContactStore::defaultModule().isEmpty(), "built without Evolution Data Server (TELVERRA_EDS)");
        // The bus and the services it starts see the throw-away home, as this process does.
        m_bus = startBus(u"--session"_s, m_address);
        QVERIFY(m_bus);
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toLatin1());

        GError *error = nullptr;
        m_registry = e_source_registry_new_sync(nullptr, &error);
        QVERIFY(succeeded(m_registry, error));
        // A second book, made as GNOME Contacts makes one.
        ESource *work = e_source_new(nullptr, nullptr, &error);
        e_source_set_display_name(work, "Work");
        e_source_set_parent(work, "local-stub");
        e_source_backend_set_backend_name(
            E_SOURCE_BACKEND(e_source_get_extension(work, E_SOURCE_EXTENSION_ADDRESS_BOOK)), "local");
        GList *sources = g_list_append(nullptr, work);
        QVERIFY(succeeded(e_source_registry_create_sources_sync(m_registry, sources, nullptr, &error), error));
        g_list_free(sources);
        m_workBook = QString::fromUtf8(e_source_get_uid(work));
        g_object_unref(work);
        // vCard 4's quoted type list and an embedded picture, which the personal book keeps as a file of its own.
        m_ana = addContact(personalBook, card("Ana", "García",
                                              "TEL;TYPE=\"home,fax\":+34 910 000 000\r\n"
                                              "EMAIL;TYPE=WORK:ana@example.com\r\n"
                                              "PHOTO;ENCODING=b;TYPE=PNG:" +
                                                  png.toBase64() + "\r\n"));
        m_luis = addContact(personalBook, card("Luis", "Ruiz", "TEL;TYPE=CELL:+34 600 222 333\r\n"));
        QVERIFY(!m_ana.isEmpty() && !m_luis.isEmpty() && !addContact(m_workBook, card("Marta", "Soler")).isEmpty());
    }

    void cleanupTestCase()
    {
        m_read.reset();
        for (EBookClient *client : std::as_const(m_clients)) {
            g_object_unref(client);
        }
        g_clear_object(&m_registry);
        if (!m_bus) {
            return;
        }
        // The services this bus started end with it: each is stopped and waited for before the home goes.
        QSet<uint> services;
        {
            QDBusConnection bus = QDBusConnection::connectToBus(m_address, u"cleanup"_s);
            for (const QString &name : bus.interface()->registeredServiceNames().value()) {
                const uint pid = bus.interface()->servicePid(name);
                if (name.startsWith(u':') && pid != 0 && pid != uint(QCoreApplication::applicationPid())) {
                    services.insert(pid);
                }
            }
        }
        QDBusConnection::disconnectFromBus(u"cleanup"_s);
        if (GDBusConnection *shared = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr)) {
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

    // What the application keeps of a contact EDS hands over: its picture only from a local file, never fetched.
    void records_data()
    {
        QTest::addColumn<QByteArray>("vcard");
        QTest::addColumn<QByteArray>("photoUri");
        QTest::addColumn<QByteArray>("photo");

        const QByteArray ana = "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:pas-id-1\r\nN:García;Ana;;;\r\n";
        const QByteArray plain = ana + "END:VCARD\r\n";
        const QString picture = m_home->writeFile(u"photo.png"_s, png);
        const QString fifo = m_home->path() + u"/fifo.png";
        QVERIFY(::mkfifo(QFile::encodeName(fifo).constData(), 0600) == 0);

        QTest::newRow("kept as a local file") << plain << QUrl::fromLocalFile(picture).toEncoded() << png;
        QTest::newRow("elsewhere: not fetched") << plain << QByteArray("http://127.0.0.1:9/photo.png") << QByteArray();
        QTest::newRow("on another host: not read")
            << plain << QByteArray("file://elsewhere") + picture.toUtf8() << QByteArray();
        QTest::newRow("a FIFO is never waited on") << plain << QUrl::fromLocalFile(fifo).toEncoded() << QByteArray();
        QTest::newRow("the card's own picture wins")
            << ana + "PHOTO;ENCODING=b;TYPE=PNG:" + png.toBase64() + "\r\nEND:VCARD\r\n"
            << QByteArray("file:///nonexistent.png") << png;
        QTest::newRow("not a card") << QByteArray("garbage") << QByteArray() << QByteArray();
    }

    void records()
    {
        QFETCH(QByteArray, vcard);
        QFETCH(QByteArray, photoUri);
        QFETCH(QByteArray, photo);
        const std::optional<VCardContact> contact =
            EdsContactStore::record(personalBook, {u"pas-id-1"_s, vcard, photoUri});
        QCOMPARE(contact ? contact->identifier + u' ' + contact->familyName : QString(),
                 vcard == "garbage" ? QString() : u"eds:system-address-book/pas-id-1 García"_s);
        QCOMPARE(contact ? contact->thumbnailImageData : QByteArray(), photo);
    }

    // The books are read into the address book beside the vCard folders, and every change in them follows, in order.
    void booksReadAndFollowed_data()
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

    void booksReadAndFollowed()
    {
        QFETCH(QString, change);
        QFETCH(QStringList, expected);
        if (!m_read) {
            m_read = std::make_unique<AddressBook>();
        }

        GError *error = nullptr;
        if (change == u"rename Luis") {
            EContact *lucho = e_contact_new_from_vcard_with_uid(card("Lucho", "Ruiz"), m_luis.toUtf8().constData());
            const bool modified = e_book_client_modify_contact_sync(book(personalBook), lucho,
                                                                    E_BOOK_OPERATION_FLAG_NONE, nullptr, &error);
            g_object_unref(lucho);
            QVERIFY(succeeded(modified, error));
        } else if (change == u"remove Ana") {
            QVERIFY(succeeded(e_book_client_remove_contact_by_uid_sync(book(personalBook), m_ana.toUtf8().constData(),
                                                                       E_BOOK_OPERATION_FLAG_NONE, nullptr, &error),
                              error));
        } else if (change == u"restart, add Eva") {
            QDBusConnection bus = QDBusConnection::connectToBus(m_address, u"restart"_s);
            const uint factory = bus.interface()->servicePid(u"org.gnome.evolution.dataserver.AddressBook10"_s);
            QDBusConnection::disconnectFromBus(u"restart"_s);
            QVERIFY(factory != 0);
            QCOMPARE(::kill(pid_t(factory), SIGTERM), 0);
            QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(u"/proc/"_s + QString::number(factory)), 20000);
            g_object_unref(m_clients.take(personalBook)); // its connection ended with the service
            m_eva = addContact(personalBook, card("Eva", "Vidal"));
            QVERIFY(!m_eva.isEmpty());
        } else if (change == u"disable Work") {
            ESource *work = e_source_registry_ref_source(m_registry, m_workBook.toUtf8().constData());
            e_source_set_enabled(work, FALSE);
            const bool written = e_source_write_sync(work, nullptr, &error);
            g_object_unref(work);
            QVERIFY(succeeded(written, error));
        }

        auto edsNames = [this] {
            QStringList names;
            for (const Contact &contact : m_read->service.allContacts()) {
                if (contact.id().startsWith(u"eds:")) {
                    names.append(contact.contact().givenName);
                }
            }
            names.sort();
            return names;
        };
        QTRY_COMPARE_WITH_TIMEOUT(edsNames(), expected, 30000);
        QVERIFY(m_read->service.contact(u"pedro"_s)); // the vCard folder's contact stays throughout
        if (!change.isEmpty()) {
            return;
        }
        QVERIFY(m_read->eds.isSettled());
        QCOMPARE(m_read->eds.unavailableReason(), QString());
        QStringList containers;
        for (const ContactStore::Container &container : m_read->both.containers().containers) {
            containers.append(container.identifier + u' ' + container.name);
        }
        QCOMPARE(containers.mid(1),
                 (QStringList{u"eds:system-address-book Personal"_s, u"eds:"_s + m_workBook + u" Work"}));
        // EDS moved Ana's picture into a file of its own, and kept her fax's type list quoted; numbers and addresses
        // are grouped by label.
        const std::optional<Contact> ana = m_read->service.contact(personal(m_ana));
        QVERIFY(ana);
        QCOMPARE(ana->contact().thumbnailImageData, png);
        QCOMPARE(ContactLabels::phoneNumbersByLabel(ana->contact()).keys() +
                     ContactLabels::emailAddressesByLabel(ana->contact()).keys(),
                 (QStringList{u"home fax"_s, u"work"_s}));
        const std::optional<Contact> luis = m_read->service.findContact(u"+34 600 222 333"_s).contact;
        QCOMPARE(luis ? luis->id() : QString(), personal(m_luis));
        QCOMPARE(m_read->manager.fetchContact(luis->id())->contact().familyName, u"Ruiz"_s);
    }

    // telverra contacts: EDS's books beside the folders when EDS is on the bus, the folders alone and at once when it
    // is not, and only the folder named by --contacts.
    void commandLine_data()
    {
        QTest::addColumn<bool>("bareBus"); // a bus on which EDS cannot be started
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QStringList>("expected");

        const QString folder = m_home->path() + u"/.local/share/contacts/family";
        QStringList all{personal(m_luis), personal(m_eva), u"pedro"_s};
        all.sort();
        QTest::newRow("EDS on the bus") << false << QStringList() << all;
        QTest::newRow("a bus without EDS") << true << QStringList() << QStringList{u"pedro"_s};
        QTest::newRow("--contacts DIR") << false << QStringList{u"--contacts"_s, folder} << QStringList{u"pedro"_s};
    }

    void commandLine()
    {
        QFETCH(bool, bareBus);
        QFETCH(QStringList, arguments);
        QFETCH(QStringList, expected);

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        std::unique_ptr<QProcess> bus; // ends with its QProcess
        if (bareBus) {
            const QString config = m_home->writeFile(
                u"bare.conf"_s,
                "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy "
                "context=\"default\"><allow send_destination=\"*\"/><allow own=\"*\"/></policy></busconfig>\n");
            QString address;
            bus = startBus(u"--config-file="_s + config, address);
            QVERIFY(bus);
            environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, address);
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
    }

private:
    // Through libebook, as GNOME Contacts writes.
    EBookClient *book(const QString &uid);
    QString addContact(const QString &bookUid, const QByteArray &vcard);
    /// A dbus-daemon with the given configuration option, and its address.
    static std::unique_ptr<QProcess> startBus(const QString &config, QString &address);

    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<QProcess> m_bus;
    QString m_address;
    ESourceRegistry *m_registry = nullptr;
    QMap<QString, EBookClient *> m_clients;
    QString m_workBook;
    QString m_ana, m_luis, m_eva;
    std::unique_ptr<AddressBook> m_read;
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

EBookClient *tst_EdsContactStore::book(const QString &uid)
{
    if (!m_clients.contains(uid)) {
        ESource *source = e_source_registry_ref_source(m_registry, uid.toUtf8().constData());
        GError *error = nullptr;
        EClient *client = source ? e_book_client_connect_sync(source, guint32(-1), nullptr, &error) : nullptr;
        g_clear_object(&source);
        if (!succeeded(client, error)) {
            return nullptr;
        }
        m_clients.insert(uid, E_BOOK_CLIENT(client));
    }
    return m_clients.value(uid);
}

QString tst_EdsContactStore::addContact(const QString &bookUid, const QByteArray &vcard)
{
    EBookClient *client = book(bookUid);
    EContact *contact = e_contact_new_from_vcard(vcard.constData());
    gchar *uid = nullptr;
    GError *error = nullptr;
    const bool added = client && succeeded(e_book_client_add_contact_sync(client, contact, E_BOOK_OPERATION_FLAG_NONE,
                                                                          &uid, nullptr, &error),
                                           error);
    g_object_unref(contact);
    const QString result = added ? QString::fromUtf8(uid) : QString();
    g_free(uid);
    return result;
}

QTEST_GUILESS_MAIN(tst_EdsContactStore)
#include "tst_EdsContactStore.moc"
