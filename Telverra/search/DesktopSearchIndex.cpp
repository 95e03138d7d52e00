#include "DesktopSearchIndex.h"

#include "calls/CallTypes.h"
#include "common/TextFolding.h"
#include "contacts/ContactsListModel.h"

#include <QStringMatcher>

#include <algorithm>
#include <tuple>

namespace {

// How well a term is found in a text: 1 equal, 0.7 at the start (of the text or of one of the words), 0.4 within.
double found(const QString &term, const QString &text, const QStringList &words = {})
{
    if (term.isEmpty() || !text.contains(term)) {
        return 0;
    }
    if (text == term) {
        return 1;
    }
    if (text.startsWith(term) ||
        std::any_of(words.cbegin(), words.cend(), [&](const QString &word) { return word.startsWith(term); })) {
        return 0.7;
    }
    return 0.4;
}

// Between two pieces of a haystack: no term holds it (terms are cut at blanks and controls).
const QChar pieceSeparator = u'\n';

} // namespace

void DesktopSearchIndex::Haystack::add(const QString &piece, size_t owner)
{
    starts.push_back(text.size());
    owners.push_back(quint32(owner));
    text += piece;
    text += pieceSeparator;
}

std::vector<quint32> DesktopSearchIndex::candidates(const QString &folded, const QString &digits) const
{
    std::vector<quint32> found;
    auto look = [&found](const Haystack &haystack, const QString &term) {
        if (term.isEmpty() || term.contains(pieceSeparator)) {
            return;
        }
        const QStringMatcher matcher(term);
        for (qsizetype at = matcher.indexIn(haystack.text); at >= 0;) {
            // The piece the hit is in; the search goes on from the next one.
            const auto piece = std::upper_bound(haystack.starts.cbegin(), haystack.starts.cend(), at) - 1;
            const size_t index = size_t(piece - haystack.starts.cbegin());
            found.push_back(haystack.owners[index]);
            if (index + 1 >= haystack.starts.size()) {
                break;
            }
            at = matcher.indexIn(haystack.text, haystack.starts[index + 1]);
        }
    };
    look(m_names, folded);
    look(m_emails, folded);
    if (digits.size() >= 3) {
        look(m_numbers, digits);
    }
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

DesktopSearchIndex::DesktopSearchIndex(const QList<Contact> &contacts, const QList<FavoriteTelcoEntityPtr> &links)
{
    m_entries.reserve(size_t(contacts.size() + links.size()));
    auto addToHaystacks = [this](const Entry &entry, size_t index) {
        m_names.add(entry.name, index);
        for (const QString &number : entry.numbers) {
            m_numbers.add(number, index);
        }
        for (const QString &email : entry.emails) {
            m_emails.add(email, index);
        }
    };
    for (const Contact &contact : contacts) {
        const VCardContact &card = contact.contact();
        Entry entry;
        entry.result.identifier = card.identifier;
        entry.result.name = ContactsListModel::displayName(card);
        entry.name = foldForSearch(entry.result.name);
        entry.words = entry.name.split(u' ', Qt::SkipEmptyParts);
        // In the order the contact's chips are offered: by label, then as stored.
        for (auto [groups, labels, values, isPhone] :
             {std::tuple(ContactLabels::phoneNumbersByLabel(card), &entry.numberLabels, &entry.numberValues, true),
              std::tuple(ContactLabels::emailAddressesByLabel(card), &entry.emailLabels, &entry.emailValues, false)}) {
            for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
                for (const QString &value : group.value()) {
                    labels->append(group.key());
                    values->append(value);
                    (isPhone ? entry.numbers : entry.emails).append(isPhone ? digitsOnly(value) : value.toLower());
                }
            }
        }
        addToHaystacks(entry, m_entries.size());
        m_entries.push_back(std::move(entry));
    }
    for (qsizetype i = 0; i < links.size(); ++i) {
        Entry entry;
        entry.result.kind = DesktopSearchResult::Kind::link;
        entry.result.identifier = QString::number(i);
        entry.result.name = links[i]->telcoName();
        entry.result.link = links[i]->telcoValue();
        const std::optional<CallTypes> type = callTypesFromRawValue(links[i]->telcoType());
        entry.result.linkKind = type ? label(*type) : QString();
        entry.name = foldForSearch(entry.result.name);
        entry.words = entry.name.split(u' ', Qt::SkipEmptyParts);
        entry.emails.append(entry.result.link.toLower()); // the address is searched as written
        addToHaystacks(entry, m_entries.size());
        m_entries.push_back(std::move(entry));
    }
}

QStringList DesktopSearchIndex::terms(const QString &query)
{
    QString cleaned = query.left(maximumQueryLength);
    for (QChar &c : cleaned) {
        if (c.category() == QChar::Other_Control || c.category() == QChar::Other_Format) {
            c = u' ';
        }
    }
    return cleaned.split(u' ', Qt::SkipEmptyParts).mid(0, maximumTerms);
}

QList<DesktopSearchResult> DesktopSearchIndex::search(QStringList terms, int limit) const
{
    // The same bounds whatever way the terms came.
    if (terms.size() > maximumTerms) {
        terms = terms.mid(0, maximumTerms);
    }
    QStringList folded;
    QStringList digits;
    qsizetype length = 0;
    for (const QString &term : std::as_const(terms)) {
        const QString bounded = term.left(maximumQueryLength - length);
        length += bounded.size();
        if (!bounded.trimmed().isEmpty()) {
            folded.append(foldForSearch(bounded.trimmed()));
            digits.append(digitsOnly(bounded));
        }
    }
    if (folded.isEmpty() || limit <= 0) {
        return {};
    }
    const QString wholeName = folded.join(u' ');
    const QString wholeDigits = digits.join(QString());
    // A number typed with blanks is one number: its digits are matched together.
    const bool numberQuery =
        wholeDigits.size() >= 3 && std::all_of(terms.cbegin(), terms.cend(), [](const QString &t) {
            return std::all_of(t.cbegin(), t.cend(), [](QChar c) {
                return c.isDigit() || c == u'+' || c == u'-' || c == u'(' || c == u')' || c == u'.' || c == u'/';
            });
        });

    // Only the entries that hold the longest term (the rarest, likely) can hold them all.
    const qsizetype longest = std::max_element(folded.cbegin(), folded.cend(),
                                               [](const QString &a, const QString &b) { return a.size() < b.size(); }) -
                              folded.cbegin();
    const std::vector<quint32> candidates =
        numberQuery ? this->candidates(QString(), wholeDigits) : this->candidates(folded[longest], digits[longest]);

    // Three grades of relevance, each kept in list order up to the limit: no sort, and the scan ends early once the
    // best grade is full.
    QList<DesktopSearchResult> grades[3];
    for (const quint32 candidate : candidates) {
        const Entry &entry = m_entries[candidate];
        if (grades[0].size() >= limit) {
            break;
        }
        double relevance = 1;
        qsizetype number = -1;
        qsizetype email = -1;
        if (numberQuery) {
            relevance = 0;
            for (qsizetype i = 0; i < entry.numbers.size(); ++i) {
                if (const double r = found(wholeDigits, entry.numbers[i]); r > relevance) {
                    relevance = r;
                    number = i;
                }
            }
        } else {
            // Every term in the name, a number or an address; the weakest term says how good the result is.
            for (qsizetype t = 0; t < folded.size() && relevance > 0; ++t) {
                double best = found(folded[t], entry.name, entry.words);
                for (qsizetype i = 0; i < entry.emails.size(); ++i) {
                    if (const double r = found(folded[t], entry.emails[i]); r > best) {
                        best = r;
                        email = i;
                    }
                }
                if (digits[t].size() >= 3) {
                    for (qsizetype i = 0; i < entry.numbers.size(); ++i) {
                        if (const double r = found(digits[t], entry.numbers[i]); r > best) {
                            best = r;
                            number = i;
                        }
                    }
                }
                relevance = std::min(relevance, best);
            }
            if (relevance > 0 && entry.name == wholeName) {
                relevance = 1;
            }
        }
        QList<DesktopSearchResult> &grade = grades[relevance >= 1 ? 0 : relevance >= 0.7 ? 1 : 2];
        if (relevance <= 0 || grade.size() >= limit) {
            continue;
        }
        DesktopSearchResult result = entry.result;
        result.relevance = relevance;
        if (result.kind == DesktopSearchResult::Kind::contact) {
            // The number or address that matched, else the first.
            const qsizetype n = number >= 0 ? number : (entry.numberValues.isEmpty() ? -1 : 0);
            const qsizetype e = email >= 0 ? email : (entry.emailValues.isEmpty() ? -1 : 0);
            if (n >= 0) {
                result.phoneLabel = entry.numberLabels[n];
                result.phone = entry.numberValues[n];
            }
            if (e >= 0) {
                result.emailLabel = entry.emailLabels[e];
                result.email = entry.emailValues[e];
            }
        }
        grade.append(std::move(result));
    }
    QList<DesktopSearchResult> results = grades[0] + grades[1] + grades[2];
    if (results.size() > limit) {
        results.resize(limit);
    }
    return results;
}
