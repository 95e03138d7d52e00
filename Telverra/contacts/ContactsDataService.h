#pragma once

#include "Contact.h"
#include "ContactStoreManagerError.h"

#include <QFuture>
#include <QHash>
#include <QMutex>
#include <QObject>

#include <memory>
#include <optional>
#include <vector>

class ContactStoreManager;

/// The address book as the application shows it: every contact sorted by family name, fetched again whenever the
/// address book changes, and the permission error when there is one.
///
/// The books are read and sorted on a thread of their own and the results published on this object's thread, in the
/// order the fetch delivers them (its errors, then the list). A change while a read is under way supersedes it: its
/// results are dropped and the books are read again.
class ContactsDataService : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool loading READ isLoading NOTIFY loadingChanged)
    Q_PROPERTY(bool loaded READ hasLoaded NOTIFY allContactsChanged)
    Q_PROPERTY(int count READ count NOTIFY allContactsChanged)
public:
    /// How the reading competes with the rest: a window reads in the background, at the lowest priority and once it
    /// has shown itself (allowBackgroundReading(), or after backgroundStartDelay at the latest), so that it appears
    /// first.
    enum class ReadPriority
    {
        normal,
        background
    };
    static constexpr int backgroundStartDelay = 500;

    /// Loads at once. Works on the shared manager unless given another.
    explicit ContactsDataService(ContactStoreManager *manager = nullptr, ReadPriority priority = ReadPriority::normal,
                                 QObject *parent = nullptr);
    /// Waits for a read under way to end.
    ~ContactsDataService() override;

    const QList<Contact> &allContacts() const { return m_allContacts; }
    int count() const { return int(m_allContacts.size()); }
    const std::optional<ContactStoreManagerError> &permissionError() const { return m_permissionError; }
    ContactStoreManager &manager() const { return *m_manager; }
    /// Whether the books are being read now.
    bool isLoading() const { return m_loading; }
    /// Whether a list has been published since construction (an empty address book counts).
    bool hasLoaded() const { return m_hasLoaded; }

    /// The published contact with that identifier (the first of duplicates), or nothing.
    std::optional<Contact> contact(const QString &identifier) const;
    /// The same, from any thread: the record alone.
    SharedVCardContact record(const QString &identifier) const;

    /// Asks for access when it was never given, then fetches everything.
    void loadContacts();
    /// Fetches everything again (the address book changed).
    void addressBookDidChange();
    /// A background reading may start (the window is on screen).
    void allowBackgroundReading();

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
    void loadingChanged();

private:
    // The list's positions in the order of their identifiers (duplicates in list order): a look-up is a binary search,
    // and 100,000 contacts take 400 KB where a hash would take 5 MB.
    using Directory = std::vector<quint32>;
    void startFetch();
    void publishError(quint64 generation, const ContactStoreManagerError &error);
    void publishList(quint64 generation, QList<Contact> contacts, std::shared_ptr<const Directory> directory);
    void readFinished();

    ContactStoreManager *m_manager;
    ReadPriority m_priority;
    QList<Contact> m_allContacts;
    std::optional<ContactStoreManagerError> m_permissionError;
    QFuture<void> m_read;
    quint64 m_generation = 0;
    bool m_loading = false;
    bool m_reloadPending = false;
    bool m_hasLoaded = false;
    bool m_readingAllowed = true;
    bool m_fetchHeld = false;
    // The published list by identifier; guarded for the readers on other threads (the photo decoder).
    mutable QMutex m_directoryMutex;
    std::shared_ptr<const Directory> m_directory;
    QList<Contact> m_directoryContacts;
};
