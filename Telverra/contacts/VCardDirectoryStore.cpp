#include "VCardDirectoryStore.h"

#include "VCardReader.h"
#include "common/ThreadPriority.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QThread>
#include <QThreadPool>
#include <QtConcurrent>

#include <algorithm>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString rootMarker = QStringLiteral("book:");

QString dataHome()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
}

QString expandPath(QString path)
{
    path = path.trimmed();
    if (path.size() >= 2 && (path.front() == u'"' || path.front() == u'\'') && path.back() == path.front()) {
        path = path.sliced(1, path.size() - 2);
    }
    if (path.startsWith(u"~/") || path == u"~") {
        path = QDir::homePath() + path.sliced(1);
    }
    static const QRegularExpression variable(QStringLiteral("\\$\\{?([A-Za-z_][A-Za-z0-9_]*)\\}?"));
    QRegularExpressionMatch match;
    while ((match = variable.match(path)).hasMatch()) {
        path.replace(match.capturedStart(), match.capturedLength(),
                     qEnvironmentVariable(match.captured(1).toLatin1().constData()));
    }
    return QDir::cleanPath(path);
}

// The "path = …" entries of the [addressbooks] section of khard's configuration.
QStringList khardBooks()
{
    const QString configHome = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    QFile config(configHome + u"/khard/khard.conf");
    if (!config.open(QIODevice::ReadOnly | QIODevice::Text) || config.size() > 1024 * 1024) {
        return {};
    }
    QStringList books;
    bool inBooks = false;
    const QStringList lines = QString::fromUtf8(config.readAll()).split(u'\n');
    for (const QString &raw : lines) {
        const QString line = raw.trimmed();
        if (line.startsWith(u'[') && !line.startsWith(u"[[")) {
            inBooks = line.compare(u"[addressbooks]", Qt::CaseInsensitive) == 0;
            continue;
        }
        if (inBooks && line.startsWith(u"path")) {
            const qsizetype equals = line.indexOf(u'=');
            if (equals > 0 && line.first(equals).trimmed() == u"path") {
                books.append(rootMarker + expandPath(line.sliced(equals + 1)));
            }
        }
    }
    return books;
}

} // namespace

VCardDirectoryStore::VCardDirectoryStore(const QStringList &roots, QObject *parent)
    : ContactStore(parent)
{
    for (const QString &root : roots.isEmpty() ? defaultRoots() : roots) {
        if (root.startsWith(rootMarker)) {
            m_roots.append({root.sliced(rootMarker.size()), true});
        } else {
            m_roots.append({QDir::cleanPath(root), false});
        }
    }
    m_debounce.setSingleShot(true);
    m_debounce.setInterval(debounceMilliseconds);
    connect(&m_debounce, &QTimer::timeout, this, &VCardDirectoryStore::settle);
    m_watcher = new QFileSystemWatcher;
    m_watcher->moveToThread(&m_watchThread);
    connect(m_watcher, &QFileSystemWatcher::directoryChanged, &m_debounce, qOverload<>(&QTimer::start));
    connect(m_watcher, &QFileSystemWatcher::fileChanged, &m_debounce, qOverload<>(&QTimer::start));
    m_watchThread.setObjectName(QStringLiteral("address book watcher"));
    m_watchThread.start();
    watch();
}

VCardDirectoryStore::~VCardDirectoryStore()
{
    // The watcher goes in its own thread, before the thread ends.
    QMetaObject::invokeMethod(
        m_watcher, [watcher = m_watcher] { delete watcher; }, Qt::BlockingQueuedConnection);
    m_watchThread.quit();
    m_watchThread.wait();
}

QStringList VCardDirectoryStore::defaultRoots()
{
    QStringList roots = khardBooks();
    roots.append(defaultRoot());
    roots.append(dataHome() + u"/kpeoplevcard");
    return roots;
}

QString VCardDirectoryStore::defaultRoot()
{
    return dataHome() + u"/contacts";
}

ContactStore::AuthorizationStatus VCardDirectoryStore::authorizationStatus() const
{
    bool anyExists = false;
    for (const Root &root : m_roots) {
        const QFileInfo info(root.path);
        if (!info.exists()) {
            continue;
        }
        anyExists = true;
        if (!info.isDir() || !info.isReadable() || !info.isExecutable()) {
            return AuthorizationStatus::denied;
        }
    }
    return anyExists ? AuthorizationStatus::authorized : AuthorizationStatus::notDetermined;
}

void VCardDirectoryStore::requestAccess(const std::function<void(bool, const QString &)> &completion)
{
    switch (authorizationStatus()) {
    case AuthorizationStatus::notDetermined: {
        // The first use: make the personal address book, as a desktop does (or the first folder given).
        bool personal = m_roots.isEmpty();
        for (const Root &candidate : std::as_const(m_roots)) {
            personal = personal || candidate.path == defaultRoot();
        }
        const QString root = personal ? defaultRoot() : m_roots.constFirst().path;
        if (!QDir().mkpath(root)) {
            completion(false, u"The address book folder " + root + u" could not be created.");
            return;
        }
        if (m_roots.isEmpty()) {
            m_roots.append({root, false});
        }
        watch();
        completion(true, {});
        return;
    }
    case AuthorizationStatus::authorized:
        completion(true, {});
        return;
    default:
        completion(false, {});
        return;
    }
}

QList<QByteArray> VCardDirectoryStore::vcardFileNames(int directory, qsizetype limit)
{
    // Visible *.vcf and *.vcard files (any case) that are regular files or links to them: a FIFO or a device is never
    // opened. Most file systems say what an entry is in the listing itself, so only links cost a look of their own.
    QList<QByteArray> names;
    const int listing = ::dup(directory);
    DIR *folder = listing < 0 ? nullptr : ::fdopendir(listing);
    if (!folder) {
        if (listing >= 0) {
            ::close(listing);
        }
        return names;
    }
    while (names.size() < limit) {
        const dirent *entry = ::readdir(folder);
        if (!entry) {
            break;
        }
        const QByteArrayView name(entry->d_name);
        const bool vcard = name.size() > 4 && (qstrnicmp(name.last(4).data(), ".vcf", 4) == 0 ||
                                               (name.size() > 6 && qstrnicmp(name.last(6).data(), ".vcard", 6) == 0));
        if (!vcard || name.front() == '.') {
            continue;
        }
        bool regular = entry->d_type == DT_REG;
        if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
            struct stat status = {};
            regular = ::fstatat(directory, entry->d_name, &status, 0) == 0 && S_ISREG(status.st_mode);
        }
        if (regular) {
            names.append(name.toByteArray());
        }
    }
    ::closedir(folder);
    std::sort(names.begin(), names.end());
    return names;
}

QList<QByteArray> VCardDirectoryStore::vcardFileNames(const QString &folder, qsizetype limit)
{
    const int directory = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) {
        return {};
    }
    QList<QByteArray> names = vcardFileNames(directory, limit);
    ::close(directory);
    return names;
}

ContactStore::ContainersResult VCardDirectoryStore::containers()
{
    ContainersResult result;
    // A folder is one container, whichever root leads to it.
    QSet<QString> seen;
    auto add = [&result, &seen](const QFileInfo &book) {
        const QString canonical = book.canonicalFilePath();
        if (!seen.contains(canonical)) {
            seen.insert(canonical);
            result.containers.append({book.absoluteFilePath(), book.fileName()});
        }
    };
    for (const Root &root : std::as_const(m_roots)) {
        const QFileInfo info(root.path);
        if (!info.exists()) {
            continue;
        }
        if (!info.isDir() || !info.isReadable() || !info.isExecutable()) {
            result.error = u"The address book folder " + root.path + u" cannot be read.";
            result.containers.clear();
            return result;
        }
        if (root.isBook || !vcardFileNames(root.path, 1).isEmpty()) {
            add(info);
        }
        if (root.isBook) {
            continue;
        }
        const QFileInfoList books = QDir(root.path).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QFileInfo &book : books) {
            add(book);
        }
    }
    return result;
}

ContactStore::ContactsResult VCardDirectoryStore::unifiedContacts(const QString &containerIdentifier)
{
    ContactsResult result;
    const QFileInfo folder(containerIdentifier);
    const int directory =
        folder.isDir() ? ::open(QFile::encodeName(containerIdentifier).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)
                       : -1;
    if (directory < 0 || !folder.isReadable() || !folder.isExecutable()) {
        if (directory >= 0) {
            ::close(directory);
        }
        result.error = u"The address book " + containerIdentifier + u" cannot be read.";
        return result;
    }
    // A card without a UID takes its identifier from its file's absolute path.
    const QString prefix = folder.absoluteFilePath() + u'/';
    const QList<QByteArray> names = vcardFileNames(directory);
    auto readRange = [directory, &prefix, &names](qsizetype begin, qsizetype end) {
        QList<SharedVCardContact> contacts;
        contacts.reserve(end - begin);
        QByteArray buffer; // one buffer for every file of the range
        VCardReader::Labels labels;
        for (qsizetype i = begin; i < end; ++i) {
            const QByteArray &name = names.at(i);
            if (!VCardReader::readRegularFile(directory, name.constData(), buffer)) {
                continue;
            }
            const auto source = [&prefix, &name]() -> QString { return prefix + QFile::decodeName(name); };
            for (VCardContact &card : VCardReader::read(buffer, source, &labels)) {
                contacts.append(std::make_shared<const VCardContact>(std::move(card)));
            }
        }
        return contacts;
    };
    // A large book is read in as many ranges as there are cores, the first on this thread; the ranges are joined in
    // name order, so the result is the same as reading the files one after the other. The helpers are threads kept for
    // this, and work at the priority of the thread that asked.
    const qsizetype ranges = names.size() < 512 ? 1 : std::clamp(QThread::idealThreadCount(), 1, 8);
    const int niceness = ThreadPriority::niceness();
    auto readRangeAtCallersPriority = [&readRange, niceness](qsizetype begin, qsizetype end) {
        ThreadPriority::raiseNiceness(niceness);
        return readRange(begin, end);
    };
    static QThreadPool *rangeReaders = [] {
        auto *pool = new QThreadPool; // lives as long as the process
        pool->setMaxThreadCount(std::clamp(QThread::idealThreadCount(), 1, 8));
        return pool;
    }();
    QList<QFuture<QList<SharedVCardContact>>> others;
    for (qsizetype range = 1; range < ranges; ++range) {
        others.append(QtConcurrent::run(rangeReaders, readRangeAtCallersPriority, names.size() * range / ranges,
                                        names.size() * (range + 1) / ranges));
    }
    result.contacts = readRange(0, names.size() / ranges);
    for (QFuture<QList<SharedVCardContact>> &other : others) {
        result.contacts.append(other.result());
    }
    ::close(directory);

    return result;
}

ContactStore::ContactResult VCardDirectoryStore::unifiedContact(const QString &identifier)
{
    // The first book, in container order, that holds the identifier: as a list shows duplicates. The books are read
    // for it (the window looks its contacts up in the list it has read instead).
    for (const Container &container : containers().containers) {
        for (const SharedVCardContact &contact : unifiedContacts(container.identifier).contacts) {
            if (contact->identifier == identifier) {
                return {*contact, {}};
            }
        }
    }
    return {std::nullopt, u"No contact with the identifier " + identifier + u" exists."};
}

void VCardDirectoryStore::watch()
{
    QMetaObject::invokeMethod(m_watcher, [this] {
        // Never urgent: the window and the reading come first.
        ThreadPriority::raiseNiceness(ThreadPriority::background);
        QStringList paths;
        for (const Root &root : std::as_const(m_roots)) {
            // The parent too, so that a root made later is noticed.
            const QString parent = QFileInfo(root.path).absolutePath();
            if (QFileInfo(parent).isDir()) {
                paths.append(parent);
            }
        }
        const ContainersResult all = containers();
        for (const Root &root : std::as_const(m_roots)) {
            if (QFileInfo(root.path).isDir()) {
                paths.append(root.path);
            }
        }
        QStringList files;
        for (const Container &container : all.containers) {
            paths.append(container.identifier);
            if (files.size() <= maximumWatchedFiles) {
                for (const QByteArray &name : vcardFileNames(container.identifier, maximumWatchedFiles + 1)) {
                    files.append(container.identifier + u'/' + QFile::decodeName(name));
                }
            }
        }
        // A file edited in place only shows on the file itself. Watching each file is worth it for a personal address
        // book; for large ones (synced folders, which replace files by renaming) the folders are enough, and adding
        // many paths to QFileSystemWatcher costs quadratic time.
        if (files.size() <= maximumWatchedFiles) {
            paths += files;
        }
        // Only what changed, so that a path watched before stays watched throughout.
        const QStringList watchedList = m_watcher->directories() + m_watcher->files();
        const QSet<QString> watched(watchedList.cbegin(), watchedList.cend());
        const QSet<QString> wanted(paths.cbegin(), paths.cend());
        const QSet<QString> gone = watched - wanted;
        const QSet<QString> added = wanted - watched;
        if (!gone.isEmpty()) {
            m_watcher->removePaths(QStringList(gone.cbegin(), gone.cend()));
        }
        if (!added.isEmpty()) {
            m_watcher->addPaths(QStringList(added.cbegin(), added.cend()));
        }
        m_watching.storeRelease(1);
    });
}

bool VCardDirectoryStore::isWatching() const
{
    return m_watching.loadAcquire() != 0;
}

void VCardDirectoryStore::settle()
{
    watch();
    Q_EMIT didChange();
}
