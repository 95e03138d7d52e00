#pragma once

#include <QMetaType>
#include <QString>
#include <QVariant>

#include <functional>
#include <memory>
#include <vector>

class ManagedObject;
class ManagedObjectContext;

/// One attribute of an entity: its column name and type. Every attribute may hold no value but the non-optional ones.
struct AttributeDescription
{
    QString name;
    QMetaType::Type type; // QString, Double (dates as seconds since 1970) or Int
    bool optional = true;
};

/// An entity: its table name (equal to the record class name), its attributes, and how to make an empty record.
struct EntityDescription
{
    QString name;
    std::vector<AttributeDescription> attributes;
    std::function<std::shared_ptr<ManagedObject>()> make;

    /// The value a non-optional attribute starts with (0).
    static QVariant defaultValue(QMetaType::Type type);

    /// The attribute's position, or -1.
    int indexOf(QStringView attribute) const;
};

/// A record living in a ManagedObjectContext: one object per stored row (the context's identity map), changed in
/// memory and written by the context's save.
class ManagedObject
{
public:
    virtual ~ManagedObject();
    ManagedObject(const ManagedObject &) = delete;
    ManagedObject &operator=(const ManagedObject &) = delete;

    const EntityDescription &entity() const { return m_entity; }
    /// The stored row's identifier; 0 until the record's insertion has been saved.
    qint64 rowId() const { return m_rowId; }
    bool isInserted() const { return m_state == State::Inserted; }
    bool isUpdated() const { return m_state == State::Updated; }
    bool isDeleted() const { return m_state == State::Deleted || m_state == State::Gone; }

    /// An invalid QVariant when the record holds no value.
    QVariant value(int attribute) const { return m_values[static_cast<size_t>(attribute)]; }
    QVariant value(QStringView attribute) const;
    /// Sets a value (an invalid QVariant clears it) and registers the change with the context.
    void setValue(int attribute, const QVariant &value);

protected:
    explicit ManagedObject(const EntityDescription &entity);

    std::optional<QString> stringValue(int attribute) const;
    void setString(int attribute, const std::optional<QString> &value);

private:
    friend class ManagedObjectContext;
    enum class State
    {
        Inserted,
        Clean,
        Updated,
        Deleted,
        Gone
    };

    const EntityDescription &m_entity;
    std::vector<QVariant> m_values;
    qint64 m_rowId = 0;
    State m_state = State::Clean;
    State m_stateBeforeDelete = State::Clean;
    ManagedObjectContext *m_context = nullptr;
};
