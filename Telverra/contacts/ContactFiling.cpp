#include "ContactFiling.h"

#include "common/TextFolding.h"

#include <QHash>
#include <QSet>

#include <algorithm>

namespace ContactFiling {

namespace {
bool isNumberish(const QString &key)
{
    static const QSet<QString> numberish = {u"0"_qs, u"1"_qs, u"2"_qs, u"3"_qs, u"4"_qs, u"5"_qs, u"6"_qs,
                                            u"7"_qs, u"8"_qs, u"9"_qs, u"-"_qs, u"_"_qs, u"."_qs, u"ç"_qs};
    return numberish.contains(key);
}
} // namespace

const QString &filingName(const VCardContact &contact)
{
    if (!contact.familyName.isEmpty()) {
        return contact.familyName;
    }
    if (!contact.givenName.isEmpty()) {
        return contact.givenName;
    }
    return contact.organizationName;
}

QString indexLetter(const VCardContact &contact)
{
    const QString &name = filingName(contact);
    if (name.isEmpty() || name.front().isNumber()) {
        return QStringLiteral("#");
    }
    // The first character (a whole surrogate pair where there is one), folded, then capitalised.
    const qsizetype length = name.front().isHighSurrogate() && name.size() > 1 ? 2 : 1;
    return foldDiacritics(name.first(length)).toUpper();
}

QString sectionKey(const VCardContact &contact)
{
    const QString folded = foldDiacritics(filingName(contact));
    return folded.isEmpty() ? QString() : folded.first(1).toLower();
}

bool belongsUnder(const QString &letter, const QString &key)
{
    return letter == u"#" ? isNumberish(key) : key == letter.toLower();
}

Sections sections(const QList<SharedVCardContact> &contacts)
{
    QSet<QString> letters;
    QHash<QString, QList<qsizetype>> byKey; // contacts by section key, in list order
    QList<qsizetype> numberish;
    for (qsizetype i = 0; i < contacts.size(); ++i) {
        letters.insert(indexLetter(*contacts[i]));
        const QString key = sectionKey(*contacts[i]);
        byKey[key].append(i);
        if (isNumberish(key)) {
            numberish.append(i);
        }
    }
    Sections result;
    result.letters = QStringList(letters.cbegin(), letters.cend());
    std::sort(result.letters.begin(), result.letters.end());
    for (const QString &letter : std::as_const(result.letters)) {
        result.members.append(letter == u"#" ? numberish : byKey.value(letter.toLower()));
    }
    return result;
}

} // namespace ContactFiling
