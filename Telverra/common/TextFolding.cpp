#include "TextFolding.h"

#include <array>

namespace {

QString foldSlowly(const QString &text)
{
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

// The Latin letters with their accents (up to U+024F) fold one for one; the table is made once by the general rule
// itself. 0 marks a character that does not fold to a single one.
constexpr char16_t latinEnd = 0x250;
const std::array<char16_t, latinEnd> &latinFolds()
{
    static const std::array<char16_t, latinEnd> table = [] {
        std::array<char16_t, latinEnd> folds = {};
        for (char16_t c = 0; c < latinEnd; ++c) {
            const QString folded = foldSlowly(QString(QChar(c)));
            folds[c] = folded.size() == 1 ? folded.at(0).unicode() : char16_t(0);
        }
        return folds;
    }();
    return table;
}

// The spelling of a lower-case letter that removing marks leaves as it is; null for the others.
const char16_t *spelling(char16_t c)
{
    switch (c) {
    case u'æ':
        return u"ae";
    case u'ð':
    case u'đ':
        return u"d";
    case u'ø':
        return u"o";
    case u'þ':
        return u"th";
    case u'ß':
        return u"ss";
    case u'ħ':
        return u"h";
    case u'ı':
        return u"i";
    case u'ł':
        return u"l";
    case u'œ':
        return u"oe";
    case u'ŧ':
        return u"t";
    default:
        return nullptr;
    }
}

} // namespace

QString foldForSearch(const QString &text)
{
    // Case first, so that only the lower-case letters need a spelling (Ø, Æ, ẞ fold to ø, æ, ß).
    const QString folded = foldDiacritics(text).toCaseFolded();
    qsizetype first = 0;
    while (first < folded.size() && !spelling(folded.at(first).unicode())) {
        ++first;
    }
    if (first == folded.size()) {
        return folded;
    }
    QString spelt = folded.first(first);
    spelt.reserve(folded.size() + 8);
    for (qsizetype i = first; i < folded.size(); ++i) {
        const char16_t c = folded.at(i).unicode();
        if (const char16_t *letters = spelling(c)) {
            spelt.append(QStringView(letters));
        } else {
            spelt.append(QChar(c));
        }
    }
    return spelt;
}

QString foldDiacritics(const QString &text)
{
    // Plain ASCII has nothing to fold; most names are, and this runs over whole address books.
    qsizetype firstOther = 0;
    while (firstOther < text.size() && text.at(firstOther).unicode() < 0x80) {
        ++firstOther;
    }
    if (firstOther == text.size()) {
        return text;
    }
    // Without combining marks or other scripts, each character folds on its own.
    const std::array<char16_t, latinEnd> &folds = latinFolds();
    QString folded = text;
    for (qsizetype i = firstOther; i < folded.size(); ++i) {
        const char16_t c = folded.at(i).unicode();
        if (c >= latinEnd || folds[c] == 0) {
            return foldSlowly(text);
        }
        folded[i] = QChar(folds[c]);
    }
    return folded;
}

QString digitsOnly(QStringView text)
{
    QString digits;
    digits.reserve(text.size());
    for (QChar c : text) {
        if (c.isDigit()) {
            digits.append(c);
        }
    }
    return digits;
}
