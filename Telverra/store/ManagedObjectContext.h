#pragma once

#include "FetchRequest.h"
#include "ManagedObject.h"

#include <QHash>
#include <QSet>
#include <QSqlDatabase>
#include <QString>

#include <map>
#include <memory>
#include <vector>

/// The store's object context: one object per stored row, pending inserts, updates and deletes, a save that writes
/// them in one transaction, and fetches that see the pending changes. Main thread only.
class ManagedObjectContext
{
public:
    struct FetchResult
    {
        std::vector<std::shared_ptr<ManagedObject>> objects;
        /// Empty when the fetch succeeded.
        QString error;
    };

    /// Works on the open database connection of that name.
    explicit ManagedObjectContext(const QString &connectionName);
    ~ManagedObjectContext();
    ManagedObjectContext(const ManagedObjectContext &) = delete;
    ManagedObjectContext &operator=(const ManagedObjectContext &) = delete;

    template<class T>
    std::shared_ptr<T> insertNewObject()
    {
        auto object = std::static_pointer_cast<T>(T::entityDescription().make());
        insertObject(object);
        return object;
    }
    void insertObject(const std::shared_ptr<ManagedObject> &object);
    /// Marks a record for deletion at the next save; an inserted record that was never saved is simply dropped.
    void deleteObject(ManagedObject *object);

    bool hasChanges() const;
    /// Writes every pending change in one transaction. On failure nothing is written, the changes stay pending and
    /// the store's error text is returned; on success the returned text is empty.
    QString save();

    FetchResult execute(const EntityDescription &entity, const FetchRequest &request);

    /// Number of records held in memory (for measurements).
    qsizetype registeredObjectCount() const;

private:
    friend class ManagedObject;
    void objectDidChange(ManagedObject *object);
    std::shared_ptr<ManagedObject> registered(const EntityDescription &entity, qint64 rowId) const;
    QString loadMissing(const EntityDescription &entity, const FetchRequest &request);
    /// The database's change counter for commits by other connections, or -1 when it cannot be read.
    qint64 dataVersion() const;

    QString m_connectionName;
    // The identity map, per entity in row order (which is insertion order).
    QHash<const EntityDescription *, std::map<qint64, std::shared_ptr<ManagedObject>>> m_registered;
    // Entities whose every stored row is registered, as of m_dataVersion: their fetches need not read the file.
    QSet<const EntityDescription *> m_complete;
    qint64 m_dataVersion = -1;
    std::vector<std::shared_ptr<ManagedObject>> m_inserted;
    std::vector<std::shared_ptr<ManagedObject>> m_updated;
    std::vector<std::shared_ptr<ManagedObject>> m_deleted;
};
