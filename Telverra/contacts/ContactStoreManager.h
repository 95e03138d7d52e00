#pragma once

#include "Contact.h"
#include "ContactStore.h"
#include "ContactStoreManagerError.h"

#include <QObject>

#include <functional>
#include <optional>
#include <variant>

/// The one gate to the address book, shared by the contacts service and the favourites.
class ContactStoreManager : public QObject
{
    Q_OBJECT
public:
    using AccessResult = std::variant<bool, ContactStoreManagerError>;
    using FetchResult = std::variant<QList<SharedVCardContact>, ContactStoreManagerError>;

    explicit ContactStoreManager(ContactStore &store, QObject *parent = nullptr);

    /// The process's manager, made on first use over the desktop's address book (desktopStore()), or over the store
    /// given to setSharedContactStore() before that first use.
    static ContactStoreManager &shared();
    static void setSharedContactStore(ContactStore *store);
    /// The desktop's address book: the vCard folders, and Evolution Data Server's books beside them when the program
    /// was built with them and the preference "useEvolutionDataServer" is not off.
    static ContactStore *desktopStore();

    /// The keys a full fetch asks for, and those of a fetch by identifier (the same fourteen in another order).
    static const QStringList defaultKeys;
    static const QStringList identifierKeys;

    ContactStore &contactStore() const { return m_store; }

    /// Asks for access. When the store reports an error the completion runs twice: first with permissionError,
    /// then with the granted flag.
    void requestAccess(const std::function<void(const AccessResult &)> &completion);
    /// Every container's contacts, in container order. A failing container is reported through the completion and
    /// skipped; the completion then runs once more with everything that could be read.
    void fetchAllContacts(const std::optional<QStringList> &keys,
                          const std::function<void(const FetchResult &)> &completion);
    /// One contact by identifier, with its collections empty; nothing (and a line) when it cannot be fetched.
    std::optional<Contact> fetchContact(const QString &identifier);

    /// Answers fetchContact() from the address book as last read, instead of reading the books for each look-up.
    /// `owner` names who answers, so that only it takes the answers back (with nullptr).
    using Lookup = std::function<SharedVCardContact(const QString &identifier)>;
    void setLookup(const QObject *owner, Lookup lookup);

private:
    ContactStore &m_store;
    const QObject *m_lookupOwner = nullptr;
    Lookup m_lookup;
};
