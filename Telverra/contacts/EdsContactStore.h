#pragma once

#include "ContactStore.h"
#include "EdsSession.h"
#include "VCardReader.h"

#include <QDeadlineTimer>
#include <QMutex>
#include <QTimer>
#include <QWaitCondition>

#include <map>
#include <thread>

/// The address books of Evolution Data Server, read-only: the personal book GNOME Contacts edits and the Google or
/// Nextcloud books GNOME Online Accounts adds (cached by EDS, so they work offline). Each enabled book is a container,
/// named as EDS names it; its contacts are kept here as the vCard reader's records and follow every change EDS
/// reports.
///
/// EDS is reached through the module telverra-eds on a thread of its own (EdsSession), started when the address book is
/// first read: a window reads it once it has shown itself, so nothing of EDS (the module's forty-odd libraries take the
/// loader's lock while they load) comes before its first frame. The session works at the priority of that first
/// reader: in the background for a window, at once for a listing. The first read waits until EDS's books have been read
/// once, as long as EDS keeps making progress (at most silenceWait without news, and firstReadWait in all), so that a
/// window, a listing or a search starts with the whole address book; with no EDS on the bus it does not wait at all.
/// Later changes are announced with didChange().
///
/// A contact's identifier is "eds:", its book's identifier, "/" and its identifier in the book: EDS's identifiers
/// stay the same across restarts (a favourite keeps its person), and the prefix keeps them apart from vCard UIDs, with
/// which they would otherwise collide whenever the same card also lies in a vCard folder (exported from GNOME
/// Contacts, or the same server book synchronised there too); an EDS identifier is only unique within its book.
///
/// containers() and unifiedContacts() may be called from any thread.
class EdsContactStore : public ContactStore, private EdsSession::Events
{
    Q_OBJECT
public:
    /// The longest the first read waits for news from EDS, and for EDS's books in all.
    static constexpr int silenceWait = 3000;
    static constexpr int firstReadWait = 30000;
    /// The longest the bus may take to start EDS's services.
    static constexpr int startTimeout = 10000;
    /// How long changes reported together are collected before didChange().
    static constexpr int settleMilliseconds = 100;

    /// `module`: the file of the EDS module; empty for the one beside the program.
    explicit EdsContactStore(const QString &module = {}, QObject *parent = nullptr);
    ~EdsContactStore() override;

    /// The module as installed with the program, relative to the executable's folder.
    static QString defaultModule();
    /// The identifier of the contact `uid` of the book `book`.
    static QString identifier(const QString &book, const QString &uid);
    /// The record of a contact as EDS hands it over: its vCard read as any other, its identifier made by identifier(),
    /// and its picture read when EDS keeps it as a local file (a picture anywhere else is never fetched). Nothing when
    /// the card cannot be read.
    static std::optional<VCardContact> record(const QString &book, const EdsSession::Events::Card &card,
                                              VCardReader::Labels *labels = nullptr);

    /// Whether EDS's books have all been read once, or there is no EDS to read.
    bool isSettled() const;
    /// Why EDS cannot be read, once that is known (empty otherwise).
    QString unavailableReason() const;

    AuthorizationStatus authorizationStatus() const override;
    void requestAccess(const std::function<void(bool, const QString &)> &completion) override;
    ContainersResult containers() override;
    ContactsResult unifiedContacts(const QString &containerIdentifier) override;
    ContactResult unifiedContact(const QString &identifier) override;

Q_SIGNALS:
    /// EDS's books have all been read once, or it turned out that there is no EDS.
    void settled();

private:
    struct Book
    {
        QString uid;
        QString name;
        std::map<QString, SharedVCardContact> contacts; // what the store shows, by EDS's identifier
        std::map<QString, SharedVCardContact> incoming; // a reading under way, shown once it completes
        bool reading = false;
        bool read = false; // read once, or failed
    };

    // EdsSession::Events, on the session's thread.
    void unavailable(const QString &reason) override;
    void booksListed(const QList<EdsSession::Events::Book> &books) override;
    void bookFailed(const QString &book, const QString &reason) override;
    void viewStarted(const QString &book) override;
    void contactsChanged(const QString &book, const QList<Card> &cards) override;
    void contactsRemoved(const QString &book, const QStringList &uids) override;
    void viewComplete(const QString &book) override;

    void runSession();
    // With m_mutex held.
    void start();
    Book *findBook(const QString &uid);
    void changed();
    void progressed();
    void settleWhenRead();
    void announceChange();

    mutable QMutex m_mutex;
    QWaitCondition m_settledCondition;
    const QString m_module;
    QDeadlineTimer m_firstReadDeadline;
    QDeadlineTimer m_silenceDeadline;
    std::vector<Book> m_books; // in the order shown: the personal book, then by name
    bool m_listed = false;
    bool m_settled = false;
    bool m_stopping = false;
    QString m_unavailableReason;
    quint64 m_version = 0;                  // counts the changes to what is shown
    std::optional<quint64> m_servedVersion; // what the last read started from
    bool m_changePosted = false;
    EdsSession *m_session = nullptr;
    VCardReader::Labels m_labels; // the session thread's
    QTimer m_changeTimer;
    std::thread m_thread;
};
