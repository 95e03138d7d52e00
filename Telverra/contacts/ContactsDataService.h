#pragma once

#include "Contact.h"
#include "ContactStoreManagerError.h"

#include <QObject>

#include <optional>
#include <vector>

class ContactStoreManager;

/// The address book as the application shows it: every contact sorted by family name, fetched again whenever the
/// address book changes, and the permission error when there is one.
class ContactsDataService : public QObject
{
    Q_OBJECT
public:
    /// Loads at once. Works on the shared manager unless given another.
    explicit ContactsDataService(ContactStoreManager *manager = nullptr, QObject *parent = nullptr);

    const QList<Contact> &allContacts() const { return m_allContacts; }
    const std::optional<ContactStoreManagerError> &permissionError() const { return m_permissionError; }

    /// Asks for access when it was never given, then fetches everything.
    void loadContacts();
    /// Fetches everything again (the address book changed).
    void addressBookDidChange();

    struct PhoneNumberMatch
    {
        std::optional<Contact> contact;
        QString label;
        QString number;
    };
    /// The first contact, in list order, holding a number with the same digits (every non-digit ignored, a country
    /// prefix included); the label of its group, the alphabetically first when several hold it; the number as given.
    PhoneNumberMatch findContact(const QString &phoneNumber) const;

    /// The positions of the contacts sorted by family name with diacritics folded and case kept, comparing code
    /// points; stable.
    static std::vector<qsizetype> familyNameOrder(const QList<SharedVCardContact> &contacts);

Q_SIGNALS:
    void allContactsChanged();
    void permissionErrorChanged();

private:
    void handleFetch(const std::variant<QList<SharedVCardContact>, ContactStoreManagerError> &result);

    ContactStoreManager *m_manager;
    QList<Contact> m_allContacts;
    std::optional<ContactStoreManagerError> m_permissionError;
};
