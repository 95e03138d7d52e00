#pragma once

#include "Contact.h"

#include <QList>
#include <QString>
#include <QStringList>

/// How contacts are filed under index letters, for the lettered list and its alphabet index.
///
/// Two rules, deliberately different: a contact's index letter is "#" only for a number first (or no name at all),
/// while the "#" section lists the names that begin with a digit or one of "-", "_", ".", "ç". A name that begins
/// with "-" therefore has a section "-" of its own and is listed under "#" too.
namespace ContactFiling {

/// The name a contact is filed under: family, else given, else organisation.
const QString &filingName(const VCardContact &contact);
/// The contact's index letter: "#" for no name or a number first; otherwise the first character with its diacritics
/// folded, capitalised.
QString indexLetter(const VCardContact &contact);
/// What a section compares: the first character of the folded filing name, lower-cased (empty for no name).
QString sectionKey(const VCardContact &contact);
/// Whether the contact is listed under the letter.
bool belongsUnder(const QString &letter, const QString &sectionKey);

/// The lettered sections of a list: the distinct index letters, sorted, and for each the positions in the list of
/// the contacts it holds, in list order. One pass over the list, whatever the number of letters.
struct Sections
{
    QStringList letters;
    QList<QList<qsizetype>> members;
};
Sections sections(const QList<SharedVCardContact> &contacts);

} // namespace ContactFiling
