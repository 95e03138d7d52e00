#include "ContactsDataService.h"

#include "ContactStoreManager.h"
#include "common/TextFolding.h"

#include <QPointer>

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
    QList<VCardContact> contacts = std::get<QList<VCardContact>>(result);
    QMetaObject::invokeMethod(
        this,
        [self, contacts = std::move(contacts)]() mutable {
            if (!self) {
                return;
            }
            // Wrapped straight into sorted order: one list fewer at the peak of a large address book.
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

std::vector<qsizetype> ContactsDataService::familyNameOrder(const QList<VCardContact> &contacts)
{
    std::vector<QString> keys;
    keys.reserve(static_cast<size_t>(contacts.size()));
    for (const VCardContact &contact : std::as_const(contacts)) {
        keys.push_back(foldDiacritics(contact.familyName));
    }
    std::vector<qsizetype> order(keys.size());
    std::iota(order.begin(), order.end(), qsizetype{0});
    std::stable_sort(order.begin(), order.end(), [&keys](qsizetype a, qsizetype b) {
        return QStringView(keys[static_cast<size_t>(a)]).compare(keys[static_cast<size_t>(b)]) < 0;
    });
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
