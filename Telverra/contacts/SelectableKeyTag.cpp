#include "SelectableKeyTag.h"

QList<SelectableKeyTag> SelectableKeyTag::fromGroups(const QMap<QString, QStringList> &groups, CallTypes type)
{
    QList<SelectableKeyTag> tags;
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        for (const QString &value : group.value()) {
            tags.append({group.key(), value, type});
        }
    }
    return tags;
}
