#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

/// A connection to Evolution Data Server's address books (GNOME's, and the Google or Nextcloud books that GNOME Online
/// Accounts adds), as the module telverra-eds provides it. The module is loaded on a thread of its own when the address
/// book is opened: the window's start never waits for libebook's forty-odd libraries, and the program runs without
/// them.
///
/// The session runs a GLib main loop of its own on the thread that calls run(): every EDS object is made, used and
/// released there, and every event is reported there. It reads the books, never writes them.
class EdsSession
{
public:
    /// What the session reports, always on the session's thread.
    class Events
    {
    public:
        struct Book
        {
            QString uid;  // the source's identifier: "system-address-book" for the personal book
            QString name; // as EDS shows it: "Personal", an account's book
            friend bool operator==(const Book &, const Book &) = default;
        };
        struct Card
        {
            QString uid;         // the contact's identifier in its book
            QByteArray vcard;    // the contact as vCard text
            QByteArray photoUri; // where its picture lies, when it is not in the card (EDS keeps them as files)
        };

        /// There is no Evolution Data Server to read: no session bus, the services are not installed, or they did not
        /// answer in time. Nothing else follows.
        virtual void unavailable(const QString &reason) = 0;
        /// The enabled address books, each time they or their names change.
        virtual void booksListed(const QList<Book> &books) = 0;
        /// A book could not be opened or read (what it held before stays as it was).
        virtual void bookFailed(const QString &book, const QString &reason) = 0;
        /// The book is read anew (first opened, or reopened after its service stopped): the contacts reported until
        /// its next viewComplete() are all it holds.
        virtual void viewStarted(const QString &book) = 0;
        /// Contacts added or changed.
        virtual void contactsChanged(const QString &book, const QList<Card> &cards) = 0;
        virtual void contactsRemoved(const QString &book, const QStringList &uids) = 0;
        /// What changed has all been reported (after the first reading, and after every later batch of changes).
        virtual void viewComplete(const QString &book) = 0;

    protected:
        ~Events() = default;
    };

    virtual ~EdsSession() = default;
    /// Runs the session on the calling thread until stop().
    virtual void run() = 0;
    /// Ends run(); from any thread, before or during it.
    virtual void stop() = 0;
};

/// The module's one entry point: a session that reports to `events`, which outlive it. `startTimeout` bounds the wait
/// for the bus to start the services, in milliseconds.
using EdsSessionFactory = EdsSession *(*)(EdsSession::Events *events, int startTimeout);
#define TELVERRA_EDS_SESSION_FACTORY "telverra_eds_session"
