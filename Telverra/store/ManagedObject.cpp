#include "ManagedObject.h"

#include "ManagedObjectContext.h"

int EntityDescription::indexOf(QStringView attribute) const
{
    for (size_t i = 0; i < attributes.size(); ++i) {
        if (attributes[i].name == attribute) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

QVariant EntityDescription::defaultValue(QMetaType::Type type)
{
    // Not QVariant(QMetaType(type)): Qt marks that one null, and it would be stored as NULL.
    return type == QMetaType::Double ? QVariant(0.0) : QVariant(0);
}

ManagedObject::ManagedObject(const EntityDescription &entity)
    : m_entity(entity)
    , m_values(entity.attributes.size())
{
    for (size_t i = 0; i < entity.attributes.size(); ++i) {
        if (!entity.attributes[i].optional) {
            m_values[i] = EntityDescription::defaultValue(entity.attributes[i].type);
        }
    }
}

ManagedObject::~ManagedObject() = default;

QVariant ManagedObject::value(QStringView attribute) const
{
    const int index = m_entity.indexOf(attribute);
    return index < 0 ? QVariant() : value(index);
}

void ManagedObject::setValue(int attribute, const QVariant &value)
{
    m_values[static_cast<size_t>(attribute)] = value;
    if (m_context) {
        m_context->objectDidChange(this);
    }
}

std::optional<QString> ManagedObject::stringValue(int attribute) const
{
    // Absence is an invalid QVariant; an empty text is a value.
    const QVariant &stored = m_values[static_cast<size_t>(attribute)];
    if (!stored.isValid()) {
        return std::nullopt;
    }
    return stored.toString();
}

void ManagedObject::setString(int attribute, const std::optional<QString> &value)
{
    // A null QString would be stored as NULL by the SQLite driver, which reads back as no value.
    setValue(attribute, value ? QVariant(value->isNull() ? QStringLiteral("") : *value) : QVariant());
}
