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

} // namespace

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
