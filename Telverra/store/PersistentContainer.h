#pragma once

#include "ManagedObjectContext.h"

#include <QString>

#include <functional>
#include <memory>

/// One SQLite file holding the four record kinds, and the view context over it.
class PersistentContainer
{
public:
    /// The store's schema version, kept in PRAGMA user_version.
    static constexpr int modelVersion = 1;

    enum class OpenMode
    {
        ReadWrite,
        ReadOnly
    };

    /// Where the store file is and how it was opened.
    struct StoreDescription
    {
        QString file;
        OpenMode mode = OpenMode::ReadWrite;
    };

    PersistentContainer(const QString &name, const QString &storeFile, OpenMode mode = OpenMode::ReadWrite);
    ~PersistentContainer();
    PersistentContainer(const PersistentContainer &) = delete;
    PersistentContainer &operator=(const PersistentContainer &) = delete;

    const QString &name() const { return m_name; }

    /// Opens the file (creating or upgrading the schema as needed) and calls the completion once with an error text,
    /// empty when the store is ready. A damaged file, one whose schema is not ours or that a newer version wrote is
    /// an error.
    void loadPersistentStores(const std::function<void(const StoreDescription &, const QString &error)> &completion);

    /// Only valid once the stores are loaded without error.
    ManagedObjectContext &viewContext() { return *m_viewContext; }
    /// The name of the connection the context uses.
    const QString &connectionName() const { return m_connectionName; }

private:
    QString load();
    QString createOrMigrate();

    QString m_name;
    StoreDescription m_description;
    QString m_connectionName;
    std::unique_ptr<ManagedObjectContext> m_viewContext;
};
