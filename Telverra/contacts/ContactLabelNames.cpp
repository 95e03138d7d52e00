#include "ContactLabelNames.h"

#include <QCoreApplication>

namespace ContactLabels {

namespace {
// The standard labels, for the translators' catalogue.
[[maybe_unused]] const char *const standardLabels[] = {
    QT_TRANSLATE_NOOP("ContactLabels", "mobile"),   QT_TRANSLATE_NOOP("ContactLabels", "iPhone"),
    QT_TRANSLATE_NOOP("ContactLabels", "main"),     QT_TRANSLATE_NOOP("ContactLabels", "home fax"),
    QT_TRANSLATE_NOOP("ContactLabels", "work fax"), QT_TRANSLATE_NOOP("ContactLabels", "other fax"),
    QT_TRANSLATE_NOOP("ContactLabels", "pager"),    QT_TRANSLATE_NOOP("ContactLabels", "home"),
    QT_TRANSLATE_NOOP("ContactLabels", "work"),     QT_TRANSLATE_NOOP("ContactLabels", "other"),
};
} // namespace

QString displayName(const QString &label)
{
    return QCoreApplication::translate("ContactLabels", label.toUtf8().constData());
}

} // namespace ContactLabels
