#include "FetchRequest.h"

#include "ManagedObject.h"

#include <QRegularExpression>

Predicate Predicate::fromFormat(const QString &format, const QVariantList &arguments)
{
    Predicate predicate;
    predicate.m_format = format;
    static const QRegularExpression equality(QStringLiteral("^\\s*%K\\s*==?\\s*%@\\s*$"));
    if (equality.match(format).hasMatch() && arguments.size() == 2) {
        predicate.m_key = arguments.at(0).toString();
        predicate.m_value = arguments.at(1);
        predicate.m_supported = true;
    }
    return predicate;
}

bool Predicate::evaluate(const ManagedObject &object) const
{
    const QVariant stored = object.value(m_key);
    if (!stored.isValid()) {
        return !m_value.isValid();
    }
    if (stored.typeId() == QMetaType::QString || m_value.typeId() == QMetaType::QString) {
        return stored.toString() == m_value.toString(); // exact, case-sensitive
    }
    return QVariant::compare(stored, m_value) == QPartialOrdering::Equivalent;
}
