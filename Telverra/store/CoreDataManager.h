#pragma once

#include "FetchRequest.h"
#include "ManagedObjectContext.h"
#include "PersistentContainer.h"

#include <QString>

#include <functional>

#include <memory>
#include <optional>

/// The owner of the store: one per process, reached through shared(), whose view context every service uses.
class CoreDataManager
{
public:
    template<class T>
    struct Fetched
    {
        QList<std::shared_ptr<T>> records;
        /// Empty when the fetch succeeded; the store's error text otherwise.
        QString error;
        bool ok() const { return error.isEmpty(); }
    };

    /// Loads the store in that file; a store that cannot be loaded stops the process.
    explicit CoreDataManager(const QString &storeFile,
                             PersistentContainer::OpenMode mode = PersistentContainer::OpenMode::ReadWrite);
    ~CoreDataManager();

    /// The process's store, loaded on first use (thread-safe). It lives in the default file, or in the one given to
    /// setSharedStoreFile() before that first use.
    static CoreDataManager &shared();
    static void setSharedStoreFile(const QString &storeFile);
    /// Called with the file and the error when a store cannot be loaded, before the process stops: the application
    /// tells the user there while it still can.
    using LoadFailureNotice = std::function<void(const QString &storeFile, const QString &error)>;
    static void setLoadFailureNotice(LoadFailureNotice notice);
    /// $XDG_DATA_HOME/telverra/Telverra.sqlite
    static QString defaultStoreFile();

    const QString containerName = QStringLiteral("Telverra");
    PersistentContainer &container() { return *m_container; }
    ManagedObjectContext &viewContext() { return m_container->viewContext(); }

    /// Commits every pending change of the view context. A failure is written as a line and the changes stay
    /// pending, to be written by the next successful save.
    void save();

    /// Records of T matching the predicate, sorted; a limit or batch size below 1 means none. A failure is written as
    /// a line and handed back in the result.
    template<class T>
    Fetched<T> fetchEntities(const std::optional<Predicate> &predicate = std::nullopt,
                             const std::optional<QList<SortDescriptor>> &sortDescriptors = std::nullopt,
                             std::optional<int> fetchLimit = std::nullopt,
                             std::optional<int> fetchBatchSize = std::nullopt)
    {
        Fetched<T> fetched;
        ManagedObjectContext::FetchResult result =
            fetch(T::entityDescription(), predicate, sortDescriptors, fetchLimit, fetchBatchSize);
        fetched.error = std::move(result.error);
        fetched.records.reserve(static_cast<qsizetype>(result.objects.size()));
        for (auto &object : result.objects) {
            fetched.records.append(std::static_pointer_cast<T>(std::move(object)));
        }
        return fetched;
    }

private:
    ManagedObjectContext::FetchResult fetch(const EntityDescription &entity, const std::optional<Predicate> &predicate,
                                            const std::optional<QList<SortDescriptor>> &sortDescriptors,
                                            std::optional<int> fetchLimit, std::optional<int> fetchBatchSize);

    std::unique_ptr<PersistentContainer> m_container;
};
