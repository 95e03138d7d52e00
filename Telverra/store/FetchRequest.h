#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <optional>

class ManagedObject;

/// A filter on records. Only equality of one attribute is supported ("%K = %@" with the key and the value); any
/// other format is kept and reported as an error when the fetch runs.
class Predicate
{
public:
    static Predicate fromFormat(const QString &format, const QVariantList &arguments);

    bool isSupported() const { return m_supported; }
    QString format() const { return m_format; }
    const QString &key() const { return m_key; }
    const QVariant &value() const { return m_value; }
    bool evaluate(const ManagedObject &object) const;

private:
    QString m_format;
    QString m_key;
    QVariant m_value;
    bool m_supported = false;
};

struct SortDescriptor
{
    QString key;
    bool ascending = true;
};

struct FetchRequest
{
    QString entityName;
    std::optional<Predicate> predicate;
    QList<SortDescriptor> sortDescriptors;
    /// 0 means no limit.
    int fetchLimit = 0;
    /// Accepted for its meaning elsewhere (how many rows to fault in at once); results are always complete.
    int fetchBatchSize = 0;
};
