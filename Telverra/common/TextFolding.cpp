#include "TextFolding.h"

QString foldDiacritics(const QString &text)
{
    // Plain ASCII has nothing to fold; most names are, and this runs over whole address books.
    bool ascii = true;
    for (QChar c : text) {
        if (c.unicode() >= 0x80) {
            ascii = false;
            break;
        }
    }
    if (ascii) {
        return text;
    }
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    QString kept;
    kept.reserve(decomposed.size());
    for (QChar c : decomposed) {
        if (c.category() != QChar::Mark_NonSpacing) {
            kept.append(c);
        }
    }
    return kept.normalized(QString::NormalizationForm_C);
}
