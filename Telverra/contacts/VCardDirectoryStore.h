#pragma once

#include "ContactStore.h"

#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QHash>
#include <QThread>
#include <QTimer>

#include <limits>

/// The address book kept as vCard folders ("vdir"): each folder of .vcf files is one address book (a container).
///
/// Roots, in order: the address books listed in khard's configuration (each a container), then
/// $XDG_DATA_HOME/contacts and $XDG_DATA_HOME/kpeoplevcard, whose sub-folders are containers (and the root itself
/// when it holds .vcf files). Given folders replace these. A folder reached from two roots (a khard book that lies in
/// the contacts folder, or a link to it) is one container. Changes are watched and reported once things settle.
///
/// containers() and unifiedContacts() may be called from any thread. Nothing read is kept: a look-up by identifier
/// reads the books (the application answers it from the list it has read, through ContactStoreManager).
class VCardDirectoryStore : public ContactStore
{
    Q_OBJECT
public:
    /// How long changes must settle before didChange() is emitted.
    static constexpr int debounceMilliseconds = 300;
    /// Up to this many .vcf files in all, each file is watched too (for edits in place).
    static constexpr int maximumWatchedFiles = 500;

    /// `roots` empty: the desktop's address books (defaultRoots()).
    explicit VCardDirectoryStore(const QStringList &roots = {}, QObject *parent = nullptr);
    ~VCardDirectoryStore() override;

    /// khard's books (marked as containers themselves), then the XDG folders.
    static QStringList defaultRoots();
    /// $XDG_DATA_HOME/contacts: where requestAccess() makes an address book when none exists.
    static QString defaultRoot();

    /// Whether the folders are watched yet (the watches are set up on another thread after construction).
    bool isWatching() const;

    AuthorizationStatus authorizationStatus() const override;
    void requestAccess(const std::function<void(bool, const QString &)> &completion) override;
    ContainersResult containers() override;
    ContactsResult unifiedContacts(const QString &containerIdentifier) override;
    ContactResult unifiedContact(const QString &identifier) override;

private:
    struct Root
    {
        QString path;
        bool isBook = false; // khard's books are address books themselves, not folders of them
    };
    /// Watches the roots, the books and (for a small address book) every file, from a thread of its own: adding many
    /// watches costs the time of a frame or two.
    void watch();
    void settle();
    /// The names of the vCard files of the folder open as `directory`, in byte order, at most `limit` of them.
    static QList<QByteArray> vcardFileNames(int directory, qsizetype limit = std::numeric_limits<qsizetype>::max());
    static QList<QByteArray> vcardFileNames(const QString &folder,
                                            qsizetype limit = std::numeric_limits<qsizetype>::max());

    QList<Root> m_roots;
    QThread m_watchThread;
    QFileSystemWatcher *m_watcher; // lives in m_watchThread
    QAtomicInt m_watching;
    QTimer m_debounce;
};
