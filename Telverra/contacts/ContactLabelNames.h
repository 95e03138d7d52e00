#pragma once

#include <QString>

namespace ContactLabels {

/// A detail's label ("mobile", "home fax", as ContactLabels::localizedString gives it) in the user's language; a label
/// of the user's own stays as written. The labels themselves, which the history keeps, stay in English. QML shows them
/// with qsTranslate("ContactLabels", label).
QString displayName(const QString &label);

} // namespace ContactLabels
