#include "ContactsDataService.h"

#include "ContactStoreManager.h"
#include "common/ReleaseMemory.h"
#include "common/TextFolding.h"
#include "common/ThreadPriority.h"

#include <QPointer>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <QtConcurrent>

#include <algorithm>
#include <numeric>

namespace {
// The thread the books are read on: one, kept for it, so that its priority can be lowered for good.
QThreadPool &readingThread()
{
    static QThreadPool *pool = [] {
        auto *threads = new QThreadPool; // lives as long as the process
        threads->setMaxThreadCount(1);
        threads->setExpiryTimeout(-1);
        return threads;
    }();
    return *pool;
}
} // namespace

ContactsDataService::ContactsDataService(ContactStoreManager *manager, ReadPriority priority, QObject *parent)
    : QObject(parent)
    , m_manager(manager ? manager : &ContactStoreManager::shared())
    , m_priority(priority)
    , m_readingAllowed(priority == ReadPriority::normal)
{
    if (!m_readingAllowed) {
        QTimer::singleShot(backgroundStartDelay, this, &ContactsDataService::allowBackgroundReading);
    }
    loadContacts();
    connect(&m_manager->contactStore(), &ContactStore::didChange, this, &ContactsDataService::addressBookDidChange);
}

ContactsDataService::~ContactsDataService()
{
    m_manager->setLookup(this, nullptr);
    m_read.waitForFinished();
}

void ContactsDataService::loadContacts()
{
    QPointer<ContactsDataService> self(this);
    const auto status = static_cast<int>(m_manager->contactStore().authorizationStatus());
    if (status < 3) {
        m_manager->requestAccess([self](const ContactStoreManager::AccessResult &result) {
            if (std::holds_alternative<ContactStoreManagerError>(result)) {
                QMetaObject::invokeMethod(
                    self,
                    [self] {
                        if (self) {
                            self->m_permissionError = ContactStoreManagerError::permissionError();
                            Q_EMIT self->permissionErrorChanged();
                        }
                    },
                    Qt::QueuedConnection);
                return;
            }
            // Whatever was granted, a fetch follows; refused access shows as an empty address book.
            if (self) {
                self->startFetch();
            }
        });
    } else if (status == 3) {
        startFetch();
    }
}

void ContactsDataService::addressBookDidChange()
{
    QPointer<ContactsDataService> self(this);
    QMetaObject::invokeMethod(
        this,
        [self] {
            if (self) {
                self->startFetch();
            }
        },
        Qt::QueuedConnection);
}

void ContactsDataService::allowBackgroundReading()
{
    if (m_readingAllowed) {
        return;
    }
    m_readingAllowed = true;
    if (m_fetchHeld) {
        m_fetchHeld = false;
        m_loading = false;
        startFetch();
    }
}

void ContactsDataService::startFetch()
{
    if (!m_readingAllowed) {
        // Held until the window shows; the screens meanwhile say the address book is being read.
        if (!m_fetchHeld) {
            m_fetchHeld = true;
            m_loading = true;
            Q_EMIT loadingChanged();
        }
        return;
    }
    if (m_loading) {
        // What is being read is already out of date: its results are dropped, and the books read again after it.
        ++m_generation;
        m_reloadPending = true;
        return;
    }
    const quint64 generation = ++m_generation;
    m_loading = true;
    Q_EMIT loadingChanged();
    // The destructor waits for the read, so the service outlives it; what it delivers goes through the event loop.
    m_read = QtConcurrent::run(
        &readingThread(), [this, generation, manager = m_manager, background = m_priority == ReadPriority::background] {
            if (background) {
                ThreadPriority::raiseNiceness(ThreadPriority::background);
            }
            manager->fetchAllContacts(std::nullopt, [this, generation](const ContactStoreManager::FetchResult &result) {
                if (const auto *error = std::get_if<ContactStoreManagerError>(&result)) {
                    QMetaObject::invokeMethod(
                        this, [this, generation, error = *error] { publishError(generation, error); },
                        Qt::QueuedConnection);
                    return;
                }
                // Sorted and wrapped here: the records are shared, never copied, and this list is their only holder.
                QList<SharedVCardContact> records = std::get<QList<SharedVCardContact>>(result);
                const std::vector<qsizetype> order = familyNameOrder(records);
                QList<Contact> contacts;
                contacts.reserve(records.size());
                for (qsizetype index : order) {
                    contacts.append(Contact(std::move(records[index])));
                }
                auto directory = std::make_shared<Directory>(static_cast<size_t>(contacts.size()));
                std::iota(directory->begin(), directory->end(), 0u);
                std::stable_sort(directory->begin(), directory->end(), [&contacts](quint32 a, quint32 b) {
                    return contacts.at(a).record()->identifier < contacts.at(b).record()->identifier;
                });
                records.clear();
                QMetaObject::invokeMethod(
                    this,
                    [this, generation, contacts = std::move(contacts), directory = std::move(directory)]() mutable {
                        publishList(generation, std::move(contacts), std::move(directory));
                    },
                    Qt::QueuedConnection);
            });
            releaseFreedMemory();
            QMetaObject::invokeMethod(this, &ContactsDataService::readFinished, Qt::QueuedConnection);
        });
}

void ContactsDataService::publishError(quint64 generation, const ContactStoreManagerError &error)
{
    if (generation != m_generation) {
        return; // from a read that a change superseded
    }
    m_permissionError = error;
    Q_EMIT permissionErrorChanged();
}

void ContactsDataService::publishList(quint64 generation, QList<Contact> contacts,
                                      std::shared_ptr<const Directory> directory)
{
    if (generation != m_generation) {
        return;
    }
    m_allContacts.clear(); // the old records go before the new list is in place, so both are never held at once
    m_allContacts = std::move(contacts);
    {
        QMutexLocker lock(&m_directoryMutex);
        m_directory = std::move(directory);
        m_directoryContacts = m_allContacts;
    }
    if (!m_hasLoaded) {
        // From now on a look-up by identifier finds the contact in this list.
        m_manager->setLookup(this, [this](const QString &identifier) { return record(identifier); });
    }
    m_hasLoaded = true;
    Q_EMIT allContactsChanged();
}

void ContactsDataService::readFinished()
{
    m_loading = false;
    if (m_reloadPending) {
        m_reloadPending = false;
        startFetch();
        return;
    }
    Q_EMIT loadingChanged();
}

std::optional<Contact> ContactsDataService::contact(const QString &identifier) const
{
    QMutexLocker lock(&m_directoryMutex);
    if (!m_directory) {
        return std::nullopt;
    }
    // The first of the contacts with the identifier, as the list shows them.
    const auto found = std::lower_bound(m_directory->cbegin(), m_directory->cend(), identifier,
                                        [this](quint32 position, const QString &wanted) {
                                            return m_directoryContacts.at(position).record()->identifier < wanted;
                                        });
    if (found == m_directory->cend() || m_directoryContacts.at(*found).record()->identifier != identifier) {
        return std::nullopt;
    }
    return m_directoryContacts.at(*found);
}

SharedVCardContact ContactsDataService::record(const QString &identifier) const
{
    const std::optional<Contact> found = contact(identifier);
    return found ? found->record() : nullptr;
}

std::vector<qsizetype> ContactsDataService::familyNameOrder(const QList<SharedVCardContact> &contacts)
{
    // Each key beside its position, so that a comparison reads no more than the two keys.
    struct Entry
    {
        QString key;
        qsizetype index;
    };
    auto less = [](const Entry &a, const Entry &b) { return QStringView(a.key).compare(b.key) < 0; };
    std::vector<Entry> entries(static_cast<size_t>(contacts.size()));
    auto sortRange = [&](size_t begin, size_t end) {
        for (size_t i = begin; i < end; ++i) {
            entries[i] = {foldDiacritics(contacts.at(static_cast<qsizetype>(i))->familyName), qsizetype(i)};
        }
        std::stable_sort(entries.begin() + qsizetype(begin), entries.begin() + qsizetype(end), less);
    };
    // A large book is sorted in two halves at once, then merged; the merge keeps the first half's entries first
    // among equals, so the order is as stable as one sort's.
    const size_t size = entries.size();
    if (size >= 4096 && QThread::idealThreadCount() > 1) {
        const size_t middle = size / 2;
        QFuture<void> second = QtConcurrent::run(sortRange, middle, size);
        sortRange(0, middle);
        second.waitForFinished();
        std::inplace_merge(entries.begin(), entries.begin() + qsizetype(middle), entries.end(), less);
    } else {
        sortRange(0, size);
    }
    std::vector<qsizetype> order;
    order.reserve(size);
    for (const Entry &entry : entries) {
        order.push_back(entry.index);
    }
    return order;
}

ContactsDataService::PhoneNumberMatch ContactsDataService::findContact(const QString &phoneNumber) const
{
    const QString digits = digitsOnly(phoneNumber);
    for (const Contact &candidate : m_allContacts) {
        const QMap<QString, QStringList> groups = ContactLabels::phoneNumbersByLabel(candidate.contact());
        if (groups.isEmpty() || phoneNumber.isEmpty()) {
            continue;
        }
        // QMap iterates its labels in ascending order.
        for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
            for (const QString &stored : group.value()) {
                if (digitsOnly(stored) == digits) {
                    return {candidate, group.key(), phoneNumber};
                }
            }
        }
    }
    return {std::nullopt, {}, {}};
}
