#include "CoreDataManager.h"

#include "common/FatalError.h"
#include "common/Trace.h"

#include <QStandardPaths>

#include <mutex>

namespace {
QString &sharedStoreFile()
{
    static QString file;
    return file;
}

CoreDataManager::LoadFailureNotice &loadFailureNotice()
{
    static CoreDataManager::LoadFailureNotice notice;
    return notice;
}
} // namespace

CoreDataManager::CoreDataManager(const QString &storeFile, PersistentContainer::OpenMode mode)
    : m_container(std::make_unique<PersistentContainer>(containerName, storeFile, mode))
{
    m_container->loadPersistentStores([](const PersistentContainer::StoreDescription &store, const QString &error) {
        if (!error.isEmpty()) {
            if (loadFailureNotice()) {
                loadFailureNotice()(store.file, error);
            }
            // Nothing can be remembered without the store; there is no recovery and the file is left as it is.
            fatalError("Telverra/CoreDataManager", 40, u"Core Data unresolved error " + error);
        }
    });
}

CoreDataManager::~CoreDataManager() = default;

CoreDataManager &CoreDataManager::shared()
{
    static std::once_flag once;
    static CoreDataManager *instance = nullptr;
    std::call_once(once, [] {
        const QString file = sharedStoreFile().isEmpty() ? defaultStoreFile() : sharedStoreFile();
        instance = new CoreDataManager(file); // lives as long as the process
    });
    return *instance;
}

void CoreDataManager::setSharedStoreFile(const QString &storeFile)
{
    sharedStoreFile() = storeFile;
}

void CoreDataManager::setLoadFailureNotice(LoadFailureNotice notice)
{
    loadFailureNotice() = std::move(notice);
}

QString CoreDataManager::defaultStoreFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/telverra/Telverra.sqlite";
}

void CoreDataManager::save()
{
    const QString error = viewContext().save();
    if (!error.isEmpty()) {
        Trace::line(u"Error saving to Core Data " + error);
    }
}

ManagedObjectContext::FetchResult CoreDataManager::fetch(const EntityDescription &entity,
                                                         const std::optional<Predicate> &predicate,
                                                         const std::optional<QList<SortDescriptor>> &sortDescriptors,
                                                         std::optional<int> fetchLimit,
                                                         std::optional<int> fetchBatchSize)
{
    FetchRequest request;
    request.entityName = entity.name;
    request.predicate = predicate;
    request.sortDescriptors = sortDescriptors.value_or(QList<SortDescriptor>());
    request.fetchLimit = fetchLimit && *fetchLimit >= 1 ? *fetchLimit : 0;
    request.fetchBatchSize = fetchBatchSize && *fetchBatchSize >= 1 ? *fetchBatchSize : 0;
    ManagedObjectContext::FetchResult result = viewContext().execute(entity, request);
    if (!result.error.isEmpty()) {
        Trace::line(u"Couldnt fetch the enities for " + entity.name + u' ' + result.error);
    }
    return result;
}
