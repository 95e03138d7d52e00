#include "PersistentContainer.h"

#include "Entities.h"

#include <QAtomicInt>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>

namespace {

QAtomicInt s_connectionCounter;

const EntityDescription *const entities[] = {
    &RecentCallEntity::entityDescription(), &FavoriteTelcoEntity::entityDescription(),
    &FavoriteContactEntity::entityDescription(), &FavoriteActionEntity::entityDescription()};

QString columnType(const AttributeDescription &attribute)
{
    switch (attribute.type) {
    case QMetaType::QString:
        return QStringLiteral("TEXT");
    case QMetaType::Double:
        return QStringLiteral("REAL");
    default:
        return attribute.optional ? QStringLiteral("INTEGER") : QStringLiteral("INTEGER NOT NULL DEFAULT 0");
    }
}

// Version 1: one table per entity, named like it, one column per attribute.
QStringList schemaVersion1()
{
    QStringList statements;
    for (const EntityDescription *entity : entities) {
        QStringList columns{QStringLiteral("id INTEGER PRIMARY KEY")};
        for (const AttributeDescription &attribute : entity->attributes) {
            columns.append(attribute.name + u' ' + columnType(attribute));
        }
        statements.append(u"CREATE TABLE " + entity->name + u" (" + columns.join(u", ") + u')');
    }
    statements.append(
        QStringLiteral("CREATE INDEX FavoriteContactEntity_contactID ON FavoriteContactEntity (contactID)"));
    return statements;
}

// Upgrades, in order: migrations[i] takes a store from version i + 1 to version i + 2. Version 1 is the first, so
// there is nothing yet; a new step is added here with every schema change and modelVersion goes up by one.
const QList<QStringList> migrations = {};

QString queryError(const QSqlQuery &query)
{
    return query.lastError().text().trimmed();
}

} // namespace

PersistentContainer::PersistentContainer(const QString &name, const QString &storeFile, OpenMode mode)
    : m_name(name)
    , m_description{storeFile, mode}
    , m_connectionName(u"telverra-store-" + QString::number(s_connectionCounter.fetchAndAddRelaxed(1)))
{
    Q_ASSERT_X(migrations.size() == modelVersion - 1, "PersistentContainer", "one migration step per model version");
}

PersistentContainer::~PersistentContainer()
{
    m_viewContext.reset();
    {
        QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
        if (db.isValid()) {
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(m_connectionName);
}

void PersistentContainer::loadPersistentStores(
    const std::function<void(const StoreDescription &, const QString &)> &completion)
{
    const QString error = load();
    if (error.isEmpty()) {
        m_viewContext = std::make_unique<ManagedObjectContext>(m_connectionName);
    }
    completion(m_description, error);
}

QString PersistentContainer::load()
{
    const bool readOnly = m_description.mode == OpenMode::ReadOnly;
    if (!readOnly && !QDir().mkpath(QFileInfo(m_description.file).absolutePath())) {
        return u"The folder of the store " + m_description.file + u" could not be created.";
    }
    QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    if (!db.isValid()) {
        return QStringLiteral("The SQLite driver of Qt is not installed.");
    }
    db.setDatabaseName(m_description.file);
    db.setConnectOptions(readOnly ? QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000;QSQLITE_OPEN_READONLY")
                                  : QStringLiteral("QSQLITE_BUSY_TIMEOUT=5000"));
    if (!db.open()) {
        return u"The store " + m_description.file + u" could not be opened: " + db.lastError().text().trimmed();
    }

    // Opening succeeds on any file; the first read tells whether it is a sound SQLite database.
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("PRAGMA quick_check"))) {
        return u"The store " + m_description.file + u" is not a readable database: " + queryError(query);
    }
    QStringList problems;
    while (query.next()) {
        problems.append(query.value(0).toString());
    }
    if (problems != QStringList{QStringLiteral("ok")}) {
        return u"The store " + m_description.file + u" is damaged: " + problems.join(u"; ");
    }
    if (!readOnly) {
        if (!query.exec(QStringLiteral("PRAGMA journal_mode=WAL")) || !query.next() ||
            query.value(0).toString().compare(u"wal", Qt::CaseInsensitive) != 0) {
            return u"The store " + m_description.file + u" cannot keep a write-ahead log: " + queryError(query);
        }
    }
    if (!query.exec(QStringLiteral("PRAGMA synchronous=FULL"))) {
        return queryError(query);
    }
    return createOrMigrate();
}

QString PersistentContainer::createOrMigrate()
{
    QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
    QSqlQuery query(db);
    if (!query.exec(QStringLiteral("PRAGMA user_version")) || !query.next()) {
        return queryError(query);
    }
    const int version = query.value(0).toInt();
    if (!query.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table'"))) {
        return queryError(query);
    }
    QSet<QString> tables;
    while (query.next()) {
        tables.insert(query.value(0).toString());
    }

    if (version > modelVersion) {
        return u"The store was written by a newer version of " + m_name + u" (model version " +
               QString::number(version) + u"; this version reads up to " + QString::number(modelVersion) + u").";
    }
    if (version == 0 && !tables.isEmpty()) {
        return u"The store " + m_description.file + u" holds a database that " + m_name + u" did not make.";
    }

    if (version < modelVersion) {
        if (m_description.mode == OpenMode::ReadOnly) {
            return QStringLiteral("The store needs an upgrade but was opened read-only.");
        }
        QStringList statements;
        if (version == 0) {
            statements = schemaVersion1();
        }
        for (int step = std::max(version, 1); step < modelVersion; ++step) {
            statements += migrations.at(step - 1);
        }
        statements.append(u"PRAGMA user_version = " + QString::number(modelVersion));
        if (!db.transaction()) {
            return db.lastError().text().trimmed();
        }
        for (const QString &statement : std::as_const(statements)) {
            if (!query.exec(statement)) {
                const QString error = queryError(query);
                db.rollback();
                return u"The store could not be prepared: " + error;
            }
        }
        if (!db.commit()) {
            const QString error = db.lastError().text().trimmed();
            db.rollback();
            return u"The store could not be prepared: " + error;
        }
    }

    // Whatever the version says, the tables must have the shape the records need.
    for (const EntityDescription *entity : entities) {
        if (!query.exec(u"PRAGMA table_info(" + entity->name + u')')) {
            return queryError(query);
        }
        QSet<QString> columns;
        while (query.next()) {
            columns.insert(query.value(1).toString());
        }
        for (const AttributeDescription &attribute : entity->attributes) {
            if (!columns.contains(attribute.name)) {
                return u"The store's model is incompatible: " + entity->name + u" has no attribute " + attribute.name +
                       u'.';
            }
        }
    }
    return {};
}
