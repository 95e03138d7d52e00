#include "ManagedObjectContext.h"

#include <QSqlError>
#include <QSqlQuery>

#include <algorithm>
#include <numeric>

namespace {

QString errorText(const QSqlError &error)
{
    return error.text().trimmed();
}

QString columnList(const EntityDescription &entity)
{
    QStringList names;
    for (const AttributeDescription &attribute : entity.attributes) {
        names.append(attribute.name);
    }
    return names.join(u", ");
}

// Binds a record's value, a NULL of the column's type when it holds none.
QVariant boundValue(const ManagedObject &object, int attribute)
{
    const QVariant value = object.value(attribute);
    if (!value.isValid()) {
        return QVariant(QMetaType(object.entity().attributes[static_cast<size_t>(attribute)].type));
    }
    if (value.typeId() == QMetaType::QString && value.toString().isNull()) {
        return QVariant(QStringLiteral("")); // empty, not NULL
    }
    return value;
}

// One sort key column, typed once so that sorting many records does not convert values at every comparison.
struct SortColumn
{
    bool ascending = true;
    bool numeric = false;
    std::vector<double> numbers;
    std::vector<QString> texts;
    std::vector<bool> present;

    // <0, 0, >0; a record without a value sorts before one with a value.
    int compare(size_t a, size_t b) const
    {
        int order = 0;
        if (present[a] != present[b]) {
            order = present[a] ? 1 : -1;
        } else if (present[a]) {
            if (numeric) {
                order = numbers[a] < numbers[b] ? -1 : (numbers[a] > numbers[b] ? 1 : 0);
            } else {
                order = texts[a].compare(texts[b]);
            }
        }
        return ascending ? order : -order;
    }
};

} // namespace

ManagedObjectContext::ManagedObjectContext(const QString &connectionName)
    : m_connectionName(connectionName)
{}

ManagedObjectContext::~ManagedObjectContext()
{
    // Records may outlive the context in lists held elsewhere; they must no longer report to it.
    for (const auto &byRow : std::as_const(m_registered)) {
        for (const auto &[rowId, object] : byRow) {
            object->m_context = nullptr;
        }
    }
    for (const auto &object : m_inserted) {
        object->m_context = nullptr;
    }
}

void ManagedObjectContext::insertObject(const std::shared_ptr<ManagedObject> &object)
{
    object->m_context = this;
    object->m_state = ManagedObject::State::Inserted;
    m_inserted.push_back(object);
}

void ManagedObjectContext::deleteObject(ManagedObject *object)
{
    if (!object || object->m_context != this) {
        return;
    }
    switch (object->m_state) {
    case ManagedObject::State::Inserted: {
        auto found = std::find_if(m_inserted.begin(), m_inserted.end(),
                                  [object](const auto &candidate) { return candidate.get() == object; });
        if (found != m_inserted.end()) {
            m_inserted.erase(found);
        }
        object->m_state = ManagedObject::State::Gone;
        object->m_context = nullptr;
        break;
    }
    case ManagedObject::State::Clean:
    case ManagedObject::State::Updated:
        object->m_stateBeforeDelete = object->m_state;
        object->m_state = ManagedObject::State::Deleted;
        m_deleted.push_back(registered(object->entity(), object->m_rowId));
        break;
    case ManagedObject::State::Deleted:
    case ManagedObject::State::Gone:
        break;
    }
}

void ManagedObjectContext::objectDidChange(ManagedObject *object)
{
    if (object->m_state == ManagedObject::State::Clean) {
        object->m_state = ManagedObject::State::Updated;
        m_updated.push_back(registered(object->entity(), object->m_rowId));
    }
}

std::shared_ptr<ManagedObject> ManagedObjectContext::registered(const EntityDescription &entity, qint64 rowId) const
{
    const auto byRow = m_registered.constFind(&entity);
    if (byRow == m_registered.cend()) {
        return {};
    }
    const auto found = byRow->find(rowId);
    return found == byRow->end() ? nullptr : found->second;
}

bool ManagedObjectContext::hasChanges() const
{
    return !m_inserted.empty() || !m_updated.empty() || !m_deleted.empty();
}

qsizetype ManagedObjectContext::registeredObjectCount() const
{
    qsizetype count = 0;
    for (const auto &byRow : m_registered) {
        count += static_cast<qsizetype>(byRow.size());
    }
    return count;
}

QString ManagedObjectContext::save()
{
    if (!hasChanges()) {
        return {};
    }
    QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
    if (!db.transaction()) {
        return errorText(db.lastError());
    }
    std::vector<qint64> newRowIds;
    newRowIds.reserve(m_inserted.size());
    auto fail = [&db](const QSqlError &error) {
        const QString text = errorText(error);
        db.rollback();
        return text.isEmpty() ? QStringLiteral("The store could not be written.") : text;
    };

    QSqlQuery query(db);
    for (const auto &object : m_inserted) {
        const EntityDescription &entity = object->entity();
        QString placeholders = u"?"_qs.repeated(static_cast<qsizetype>(entity.attributes.size()));
        for (qsizetype i = placeholders.size() - 1; i > 0; --i) {
            placeholders.insert(i, u", "_qs);
        }
        if (!query.prepare(u"INSERT INTO " + entity.name + u" (" + columnList(entity) + u") VALUES (" + placeholders +
                           u")")) {
            return fail(query.lastError());
        }
        for (size_t i = 0; i < entity.attributes.size(); ++i) {
            query.addBindValue(boundValue(*object, static_cast<int>(i)));
        }
        if (!query.exec()) {
            return fail(query.lastError());
        }
        newRowIds.push_back(query.lastInsertId().toLongLong());
    }
    for (const auto &object : m_updated) {
        if (object->m_state != ManagedObject::State::Updated) {
            continue; // deleted since it was changed
        }
        const EntityDescription &entity = object->entity();
        QStringList assignments;
        for (const AttributeDescription &attribute : entity.attributes) {
            assignments.append(attribute.name + u" = ?");
        }
        if (!query.prepare(u"UPDATE " + entity.name + u" SET " + assignments.join(u", ") + u" WHERE id = ?")) {
            return fail(query.lastError());
        }
        for (size_t i = 0; i < entity.attributes.size(); ++i) {
            query.addBindValue(boundValue(*object, static_cast<int>(i)));
        }
        query.addBindValue(object->m_rowId);
        if (!query.exec()) {
            return fail(query.lastError());
        }
    }
    for (const auto &object : m_deleted) {
        if (!query.prepare(u"DELETE FROM " + object->entity().name + u" WHERE id = ?")) {
            return fail(query.lastError());
        }
        query.addBindValue(object->m_rowId);
        if (!query.exec()) {
            return fail(query.lastError());
        }
    }
    if (!db.commit()) {
        return fail(db.lastError());
    }

    // Only now, with everything on disk, do the records take their new state.
    for (size_t i = 0; i < m_inserted.size(); ++i) {
        const auto &object = m_inserted[i];
        object->m_rowId = newRowIds[i];
        object->m_state = ManagedObject::State::Clean;
        m_registered[&object->entity()].emplace(object->m_rowId, object);
    }
    for (const auto &object : m_updated) {
        if (object->m_state == ManagedObject::State::Updated) {
            object->m_state = ManagedObject::State::Clean;
        }
    }
    for (const auto &object : m_deleted) {
        object->m_state = ManagedObject::State::Gone;
        object->m_context = nullptr;
        m_registered[&object->entity()].erase(object->m_rowId);
    }
    m_inserted.clear();
    m_updated.clear();
    m_deleted.clear();
    return {};
}

qint64 ManagedObjectContext::dataVersion() const
{
    QSqlQuery query(QSqlDatabase::database(m_connectionName, false));
    if (!query.exec(QStringLiteral("PRAGMA data_version")) || !query.next()) {
        return -1;
    }
    return query.value(0).toLongLong();
}

// Registers the rows of the entity that match the request's predicate on their stored values and are not yet in
// memory. Rows already registered keep their in-memory values (which may hold unsaved changes). Our own commits
// keep the identity map whole, so the file is only read again when another connection has committed since.
QString ManagedObjectContext::loadMissing(const EntityDescription &entity, const FetchRequest &request)
{
    const qint64 version = dataVersion();
    if (version < 0 || version != m_dataVersion) {
        m_complete.clear();
        m_dataVersion = version;
    }
    if (m_complete.contains(&entity)) {
        return {};
    }
    QSqlDatabase db = QSqlDatabase::database(m_connectionName, false);
    QSqlQuery query(db);
    query.setForwardOnly(true);
    // "IS" so that a predicate on "no value" finds the rows holding NULL, as the in-memory check does.
    const QString where = request.predicate ? u" WHERE " + request.predicate->key() + u" IS ?" : QString();
    if (!query.prepare(u"SELECT id, " + columnList(entity) + u" FROM " + entity.name + where + u" ORDER BY id")) {
        return errorText(query.lastError());
    }
    if (request.predicate) {
        query.addBindValue(request.predicate->value());
    }
    if (!query.exec()) {
        return errorText(query.lastError());
    }
    auto &byRow = m_registered[&entity];
    std::vector<qint64> seen; // ascending, as the rows arrive
    while (query.next()) {
        const qint64 rowId = query.value(0).toLongLong();
        if (!request.predicate) {
            seen.push_back(rowId);
        }
        if (byRow.contains(rowId)) {
            continue;
        }
        std::shared_ptr<ManagedObject> object = entity.make();
        for (size_t i = 0; i < entity.attributes.size(); ++i) {
            const int column = static_cast<int>(i) + 1;
            const QMetaType::Type type = entity.attributes[i].type;
            QVariant value;
            if (query.isNull(column)) {
                value = entity.attributes[i].optional ? QVariant() : EntityDescription::defaultValue(type);
            } else {
                value = query.value(column);
                if (value.typeId() != type && !value.convert(QMetaType(type))) {
                    value = QVariant();
                }
            }
            object->m_values[i] = std::move(value);
        }
        object->m_rowId = rowId;
        object->m_state = ManagedObject::State::Clean;
        object->m_context = this;
        byRow.emplace_hint(byRow.end(), rowId, std::move(object));
    }
    if (query.lastError().isValid()) {
        return errorText(query.lastError());
    }
    if (!request.predicate) {
        // Rows another program deleted: their unchanged records go too.
        auto next = seen.cbegin();
        for (auto it = byRow.begin(); it != byRow.end();) {
            while (next != seen.cend() && *next < it->first) {
                ++next;
            }
            const bool stored = next != seen.cend() && *next == it->first;
            if (!stored && it->second->m_state == ManagedObject::State::Clean) {
                it->second->m_state = ManagedObject::State::Gone;
                it->second->m_context = nullptr;
                it = byRow.erase(it);
            } else {
                ++it;
            }
        }
    }
    if (!request.predicate) {
        m_complete.insert(&entity);
    }
    return {};
}

ManagedObjectContext::FetchResult ManagedObjectContext::execute(const EntityDescription &entity,
                                                                const FetchRequest &request)
{
    FetchResult result;
    if (request.predicate) {
        if (!request.predicate->isSupported()) {
            result.error = u"Unsupported predicate format \"" + request.predicate->format() + u'"';
            return result;
        }
        if (entity.indexOf(request.predicate->key()) < 0) {
            result.error = u"keypath " + request.predicate->key() + u" not found in entity " + entity.name;
            return result;
        }
    }
    for (const SortDescriptor &descriptor : request.sortDescriptors) {
        if (entity.indexOf(descriptor.key) < 0) {
            result.error = u"keypath " + descriptor.key + u" not found in entity " + entity.name;
            return result;
        }
    }
    result.error = loadMissing(entity, request);
    if (!result.error.isEmpty()) {
        return result;
    }

    // Stored rows in insertion order (row id), then pending inserts in the order they were made; all filtered on
    // their current in-memory values, pending deletes left out.
    const auto &byRow = m_registered[&entity];
    std::vector<std::shared_ptr<ManagedObject>> &objects = result.objects;
    objects.reserve(byRow.size() + m_inserted.size());
    auto keep = [&request](const ManagedObject &object) {
        return !object.isDeleted() && (!request.predicate || request.predicate->evaluate(object));
    };
    for (const auto &[rowId, object] : byRow) {
        if (keep(*object)) {
            objects.push_back(object);
        }
    }
    for (const auto &object : m_inserted) {
        if (&object->entity() == &entity && keep(*object)) {
            objects.push_back(object);
        }
    }

    if (!request.sortDescriptors.isEmpty()) {
        std::vector<SortColumn> columns;
        for (const SortDescriptor &descriptor : request.sortDescriptors) {
            const int attribute = entity.indexOf(descriptor.key);
            const QMetaType::Type type = entity.attributes[static_cast<size_t>(attribute)].type;
            SortColumn column;
            column.ascending = descriptor.ascending;
            column.numeric = type != QMetaType::QString;
            column.present.reserve(objects.size());
            for (const auto &object : objects) {
                const QVariant value = object->value(attribute);
                column.present.push_back(value.isValid());
                if (column.numeric) {
                    column.numbers.push_back(value.toDouble());
                } else {
                    column.texts.push_back(value.toString());
                }
            }
            columns.push_back(std::move(column));
        }
        std::vector<size_t> order(objects.size());
        std::iota(order.begin(), order.end(), size_t{0});
        std::stable_sort(order.begin(), order.end(), [&columns](size_t a, size_t b) {
            for (const SortColumn &column : columns) {
                if (const int c = column.compare(a, b); c != 0) {
                    return c < 0;
                }
            }
            return false;
        });
        std::vector<std::shared_ptr<ManagedObject>> sorted;
        sorted.reserve(objects.size());
        for (size_t index : order) {
            sorted.push_back(std::move(objects[index]));
        }
        objects = std::move(sorted);
    }
    if (request.fetchLimit > 0 && objects.size() > static_cast<size_t>(request.fetchLimit)) {
        objects.resize(static_cast<size_t>(request.fetchLimit));
    }
    return result;
}
