#include "CombinedContactStore.h"

CombinedContactStore::CombinedContactStore(const QList<ContactStore *> &stores, QObject *parent)
    : ContactStore(parent)
    , m_stores(stores)
{
    Q_ASSERT(!m_stores.isEmpty());
    for (ContactStore *store : std::as_const(m_stores)) {
        connect(store, &ContactStore::didChange, this, &ContactStore::didChange);
    }
}

ContactStore::AuthorizationStatus CombinedContactStore::authorizationStatus() const
{
    return m_stores.constFirst()->authorizationStatus();
}

void CombinedContactStore::requestAccess(const std::function<void(bool, const QString &)> &completion)
{
    m_stores.constFirst()->requestAccess(completion);
}

ContactStore::ContainersResult CombinedContactStore::containers()
{
    ContainersResult all;
    QHash<QString, ContactStore *> owners;
    for (ContactStore *store : std::as_const(m_stores)) {
        ContainersResult listed = store->containers();
        if (!listed.error.isEmpty()) {
            return listed;
        }
        for (const Container &container : std::as_const(listed.containers)) {
            owners.insert(container.identifier, store);
        }
        all.containers.append(std::move(listed.containers));
    }
    QMutexLocker lock(&m_mutex);
    m_owners = std::move(owners);
    return all;
}

ContactStore::ContactsResult CombinedContactStore::unifiedContacts(const QString &containerIdentifier)
{
    QMutexLocker lock(&m_mutex);
    ContactStore *owner = m_owners.value(containerIdentifier);
    lock.unlock();
    if (!owner) {
        return {{}, u"The address book " + containerIdentifier + u" is not known."};
    }
    return owner->unifiedContacts(containerIdentifier);
}

ContactStore::ContactResult CombinedContactStore::unifiedContact(const QString &identifier)
{
    ContactResult result;
    for (ContactStore *store : std::as_const(m_stores)) {
        result = store->unifiedContact(identifier);
        if (result.contact) {
            break;
        }
    }
    return result;
}
