#include "ContactsDataService.h"

#include "ContactStoreManager.h"
#include "common/TextFolding.h"

#include <QPointer>
#include <QThread>
#include <QtConcurrent>

#include <algorithm>
#include <numeric>

namespace {
QString digitsOnly(QStringView text)
{
    QString digits;
    digits.reserve(text.size());
    for (QChar c : text) {
        if (c.isDigit()) {
            digits.append(c);
        }
    }
    return digits;
}
} // namespace

ContactsDataService::ContactsDataService(ContactStoreManager *manager, QObject *parent)
    : QObject(parent)
    , m_manager(manager ? manager : &ContactStoreManager::shared())
{
    loadContacts();
    connect(&m_manager->contactStore(), &ContactStore::didChange, this, &ContactsDataService::addressBookDidChange);
}

void ContactsDataService::loadContacts()
{
    QPointer<ContactsDataService> self(this);
    auto fetched = [self](const ContactStoreManager::FetchResult &result) {
        if (self) {
            self->handleFetch(result);
        }
    };
    const auto status = static_cast<int>(m_manager->contactStore().authorizationStatus());
    if (status < 3) {
        m_manager->requestAccess([self, fetched](const ContactStoreManager::AccessResult &result) {
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
                self->m_manager->fetchAllContacts(std::nullopt, fetched);
            }
        });
    } else if (status == 3) {
        m_manager->fetchAllContacts(std::nullopt, fetched);
    }
}

void ContactsDataService::addressBookDidChange()
{
    QPointer<ContactsDataService> self(this);
    QMetaObject::invokeMethod(
        this,
        [self] {
            if (!self) {
                return;
            }
            self->m_manager->fetchAllContacts(std::nullopt, [self](const ContactStoreManager::FetchResult &result) {
                if (self) {
                    self->handleFetch(result);
                }
            });
        },
        Qt::QueuedConnection);
}

void ContactsDataService::handleFetch(const ContactStoreManager::FetchResult &result)
{
    // The results reach the published state on the event loop, after the fetch that produced them has returned.
    QPointer<ContactsDataService> self(this);
    if (const auto *error = std::get_if<ContactStoreManagerError>(&result)) {
        QMetaObject::invokeMethod(
            this,
            [self, error = *error] {
                if (self) {
                    self->m_permissionError = error;
                    Q_EMIT self->permissionErrorChanged();
                }
            },
            Qt::QueuedConnection);
        return;
    }
    QMetaObject::invokeMethod(
        this,
        [self, contacts = std::get<QList<SharedVCardContact>>(result)]() mutable {
            if (!self) {
                return;
            }
            // The records are shared, not copied, and by now this list is their only holder: each is moved into its
            // wrapper without touching it.
            const std::vector<qsizetype> order = familyNameOrder(contacts);
            QList<Contact> wrapped;
            wrapped.reserve(contacts.size());
            for (qsizetype index : order) {
                wrapped.append(Contact(std::move(contacts[index])));
            }
            contacts.clear();
            self->m_allContacts.clear();
            self->m_allContacts = std::move(wrapped);
            Q_EMIT self->allContactsChanged();
        },
        Qt::QueuedConnection);
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
