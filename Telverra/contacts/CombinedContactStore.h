#pragma once

#include "ContactStore.h"

#include <QHash>
#include <QMutex>

/// Several address books shown as one: the containers of each store in turn (each store names its containers so that
/// they never meet), the permission of the first, which makes the personal address book on first use, and a change
/// in any of them. The stores are not owned and outlive this one.
///
/// containers() and unifiedContacts() may be called from any thread, as the stores allow.
class CombinedContactStore : public ContactStore
{
    Q_OBJECT
public:
    explicit CombinedContactStore(const QList<ContactStore *> &stores, QObject *parent = nullptr);

    AuthorizationStatus authorizationStatus() const override;
    void requestAccess(const std::function<void(bool, const QString &)> &completion) override;
    /// Every store's containers; a store that cannot list its containers fails the whole listing, as one store would.
    ContainersResult containers() override;
    ContactsResult unifiedContacts(const QString &containerIdentifier) override;
    /// From the first store, in order, that has it.
    ContactResult unifiedContact(const QString &identifier) override;

private:
    QList<ContactStore *> m_stores;
    QMutex m_mutex;
    QHash<QString, ContactStore *> m_owners; // which store listed each container
};
