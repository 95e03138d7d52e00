#include "EdsContactStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QLibrary>
#include <QLoggingCategory>
#include <QUrl>

#include <algorithm>

#include <fcntl.h>

namespace {

Q_LOGGING_CATEGORY(edsLog, "telverra.eds", QtWarningMsg)

const QString prefix = QStringLiteral("eds:");
const QString personalBook = QStringLiteral("system-address-book");

// A picture EDS keeps as a local file: read when it is a regular file of a sensible size. Nothing else is fetched.
QByteArray localPhoto(const QByteArray &uri)
{
    const QUrl url = QUrl::fromEncoded(uri, QUrl::StrictMode);
    if (!url.isValid() || !url.isLocalFile() || !(url.host().isEmpty() || url.host() == u"localhost")) {
        return {};
    }
    QByteArray photo;
    if (!VCardReader::readRegularFile(AT_FDCWD, QFile::encodeName(url.toLocalFile()).constData(), photo) ||
        photo.size() > VCardReader::maximumPhotoSize) {
        return {};
    }
    return photo;
}

} // namespace

EdsContactStore::EdsContactStore(const QString &module, QObject *parent)
    : ContactStore(parent)
    , m_module(module.isEmpty() ? defaultModule() : module)
{
    m_changeTimer.setSingleShot(true);
    m_changeTimer.setInterval(settleMilliseconds);
    connect(&m_changeTimer, &QTimer::timeout, this, [this] {
        QMutexLocker lock(&m_mutex);
        // Only what changed since the last read is news; before any read there is nothing to announce.
        const bool news = m_servedVersion && *m_servedVersion != m_version;
        lock.unlock();
        if (news) {
            Q_EMIT didChange();
        }
    });
}

void EdsContactStore::start()
{
    if (m_thread.joinable()) {
        return;
    }
    m_firstReadDeadline = QDeadlineTimer(firstReadWait);
    m_silenceDeadline = QDeadlineTimer(silenceWait);
    // Started from the first reader's thread, whose priority it takes, and the threads GLib starts from it too.
    m_thread = std::thread(&EdsContactStore::runSession, this);
}

EdsContactStore::~EdsContactStore()
{
    {
        QMutexLocker lock(&m_mutex);
        m_stopping = true;
        if (m_session) {
            m_session->stop();
        }
        m_settledCondition.wakeAll();
    }
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

QString EdsContactStore::defaultModule()
{
#ifdef TELVERRA_EDS_MODULE
    if (QCoreApplication::instance()) {
        return QCoreApplication::applicationDirPath() + u"/" TELVERRA_EDS_MODULE;
    }
#endif
    return {};
}

QString EdsContactStore::identifier(const QString &book, const QString &uid)
{
    return prefix + book + u'/' + uid;
}

std::optional<VCardContact> EdsContactStore::record(const QString &book, const EdsSession::Events::Card &card,
                                                    VCardReader::Labels *labels)
{
    const QString id = identifier(book, card.uid);
    QList<VCardContact> read = VCardReader::read(
        card.vcard, [&id] { return id; }, labels);
    if (read.isEmpty()) {
        return std::nullopt;
    }
    VCardContact contact = std::move(read.first());
    contact.identifier = id;
    if (!contact.imageDataAvailable() && !card.photoUri.isEmpty()) {
        contact.thumbnailImageData = localPhoto(card.photoUri);
    }
    return contact;
}

void EdsContactStore::runSession()
{
    if (m_module.isEmpty()) {
        unavailable(QStringLiteral("the EDS module was not found"));
        return;
    }
    QLibrary library(m_module);
    library.setLoadHints(QLibrary::PreventUnloadHint); // GLib's types cannot be unloaded
    const auto factory = reinterpret_cast<EdsSessionFactory>(library.resolve(TELVERRA_EDS_SESSION_FACTORY));
    if (!factory) {
        unavailable(library.errorString());
        return;
    }
    EdsSession *session = factory(this, startTimeout);
    {
        QMutexLocker lock(&m_mutex);
        if (m_stopping) {
            lock.unlock();
            delete session;
            return;
        }
        m_session = session;
    }
    session->run();
    {
        QMutexLocker lock(&m_mutex);
        m_session = nullptr;
    }
    delete session;
}

bool EdsContactStore::isSettled() const
{
    QMutexLocker lock(&m_mutex);
    return m_settled;
}

QString EdsContactStore::unavailableReason() const
{
    QMutexLocker lock(&m_mutex);
    return m_unavailableReason;
}

ContactStore::AuthorizationStatus EdsContactStore::authorizationStatus() const
{
    return AuthorizationStatus::authorized; // EDS asks no permission of its clients
}

void EdsContactStore::requestAccess(const std::function<void(bool, const QString &)> &completion)
{
    completion(true, {});
}

ContactStore::ContainersResult EdsContactStore::containers()
{
    QMutexLocker lock(&m_mutex);
    start();
    // Should EDS fall silent, its books are announced once they have been read.
    while (!m_settled && !m_stopping && !m_silenceDeadline.hasExpired() && !m_firstReadDeadline.hasExpired()) {
        m_settledCondition.wait(&m_mutex, std::min(m_silenceDeadline, m_firstReadDeadline));
    }
    m_servedVersion = m_version;
    ContainersResult result;
    for (const Book &book : m_books) {
        if (book.read) {
            result.containers.append({prefix + book.uid, book.name});
        }
    }
    return result;
}

ContactStore::ContactsResult EdsContactStore::unifiedContacts(const QString &containerIdentifier)
{
    QMutexLocker lock(&m_mutex);
    ContactsResult result;
    // A book that went since it was listed has no contacts left: its change is on its way.
    if (Book *book =
            containerIdentifier.startsWith(prefix) ? findBook(containerIdentifier.sliced(prefix.size())) : nullptr) {
        result.contacts.reserve(qsizetype(book->contacts.size()));
        for (const auto &[uid, contact] : book->contacts) {
            result.contacts.append(contact);
        }
    }
    return result;
}

ContactStore::ContactResult EdsContactStore::unifiedContact(const QString &identifier)
{
    // Answered from what has been read: a look-up before the first read (the favourites' at start, on the window's
    // thread) neither waits nor starts anything.
    QMutexLocker lock(&m_mutex);
    for (const Book &book : m_books) {
        const QString bookPrefix = prefix + book.uid + u'/';
        if (identifier.startsWith(bookPrefix)) {
            const auto found = book.contacts.find(identifier.sliced(bookPrefix.size()));
            if (found != book.contacts.end()) {
                return {*found->second, {}};
            }
        }
    }
    return {std::nullopt, u"No contact with the identifier " + identifier + u" exists."};
}

EdsContactStore::Book *EdsContactStore::findBook(const QString &uid)
{
    const auto found =
        std::find_if(m_books.begin(), m_books.end(), [&uid](const Book &book) { return book.uid == uid; });
    return found != m_books.end() ? &*found : nullptr;
}

void EdsContactStore::changed()
{
    ++m_version;
    if (!m_changePosted && m_settled) {
        m_changePosted = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                {
                    QMutexLocker lock(&m_mutex);
                    m_changePosted = false;
                }
                m_changeTimer.start();
            },
            Qt::QueuedConnection);
    }
}

void EdsContactStore::progressed()
{
    if (!m_settled) {
        m_silenceDeadline = QDeadlineTimer(silenceWait);
        m_settledCondition.wakeAll(); // to wait for the new deadline
    }
}

void EdsContactStore::settleWhenRead()
{
    if (m_settled || !m_listed ||
        !std::all_of(m_books.cbegin(), m_books.cend(), [](const Book &book) { return book.read; })) {
        return;
    }
    m_settled = true;
    qCDebug(edsLog) << "read:" << m_books.size() << "books";
    m_settledCondition.wakeAll();
    // A read that gave up waiting needs to hear of what it missed.
    changed();
    QMetaObject::invokeMethod(this, &EdsContactStore::settled, Qt::QueuedConnection);
}

void EdsContactStore::unavailable(const QString &reason)
{
    qCInfo(edsLog) << "Evolution Data Server is not read:" << reason;
    QMutexLocker lock(&m_mutex);
    m_unavailableReason = reason;
    m_listed = true;
    m_books.clear();
    settleWhenRead();
}

void EdsContactStore::booksListed(const QList<EdsSession::Events::Book> &books)
{
    QMutexLocker lock(&m_mutex);
    progressed();
    bool shownChanged = false;
    for (const Book &book : m_books) {
        const bool kept =
            std::any_of(books.cbegin(), books.cend(), [&book](const auto &entry) { return entry.uid == book.uid; });
        shownChanged = shownChanged || (!kept && book.read);
    }
    std::vector<Book> listed;
    listed.reserve(size_t(books.size()));
    for (const EdsSession::Events::Book &entry : books) {
        Book *known = findBook(entry.uid);
        shownChanged = shownChanged || (known && known->read && known->name != entry.name);
        listed.push_back(known ? std::move(*known) : Book{entry.uid, entry.name, {}, {}, false, false});
        listed.back().name = entry.name;
    }
    std::stable_sort(listed.begin(), listed.end(), [](const Book &a, const Book &b) {
        if ((a.uid == personalBook) != (b.uid == personalBook)) {
            return a.uid == personalBook;
        }
        const int byName = a.name.compare(b.name, Qt::CaseInsensitive);
        return byName != 0 ? byName < 0 : a.uid < b.uid;
    });
    m_books = std::move(listed);
    m_listed = true;
    qCDebug(edsLog) << "books:" << books.size();
    if (shownChanged) {
        changed();
    }
    settleWhenRead();
}

void EdsContactStore::bookFailed(const QString &uid, const QString &reason)
{
    qCWarning(edsLog) << "The address book" << uid << "cannot be read:" << reason;
    QMutexLocker lock(&m_mutex);
    progressed();
    Book *book = findBook(uid);
    if (!book) {
        return;
    }
    // What the book showed stays (its service may come back); a book never read counts as read, and empty.
    book->incoming.clear();
    book->reading = false;
    book->read = true;
    settleWhenRead();
}

void EdsContactStore::viewStarted(const QString &uid)
{
    QMutexLocker lock(&m_mutex);
    progressed();
    if (Book *book = findBook(uid)) {
        book->incoming.clear();
        book->reading = true;
    }
}

void EdsContactStore::contactsChanged(const QString &uid, const QList<Card> &cards)
{
    // Read before taking the lock: readers on other threads wait for nothing but the exchange.
    std::vector<std::pair<QString, SharedVCardContact>> records;
    records.reserve(size_t(cards.size()));
    for (const Card &card : cards) {
        std::optional<VCardContact> contact = record(uid, card, &m_labels);
        records.emplace_back(card.uid, contact ? std::make_shared<const VCardContact>(std::move(*contact)) : nullptr);
    }
    QMutexLocker lock(&m_mutex);
    progressed();
    Book *book = findBook(uid);
    if (!book) {
        return;
    }
    auto &target = book->reading ? book->incoming : book->contacts;
    for (auto &[contactUid, contact] : records) {
        if (contact) {
            target.insert_or_assign(contactUid, std::move(contact));
        } else {
            target.erase(contactUid); // a card that no longer reads is gone
        }
    }
    if (!book->reading) {
        changed();
    }
}

void EdsContactStore::contactsRemoved(const QString &uid, const QStringList &uids)
{
    QMutexLocker lock(&m_mutex);
    progressed();
    Book *book = findBook(uid);
    if (!book) {
        return;
    }
    auto &target = book->reading ? book->incoming : book->contacts;
    for (const QString &contactUid : uids) {
        target.erase(contactUid);
    }
    if (!book->reading) {
        changed();
    }
}

void EdsContactStore::viewComplete(const QString &uid)
{
    QMutexLocker lock(&m_mutex);
    progressed();
    Book *book = findBook(uid);
    if (!book || !book->reading) {
        return; // a later batch of changes, already announced
    }
    book->contacts.swap(book->incoming);
    book->incoming.clear();
    qCDebug(edsLog) << "book" << uid << "read:" << book->contacts.size() << "contacts";
    book->reading = false;
    book->read = true;
    changed();
    settleWhenRead();
}
