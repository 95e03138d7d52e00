#pragma once

#include "contacts/Contact.h"
#include "store/Entities.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <vector>

/// One answer to a desktop search: a contact, with the number and address it is reached at, or a saved meeting link.
struct DesktopSearchResult
{
    enum class Kind
    {
        contact,
        link
    };
    Kind kind = Kind::contact;
    /// The contact's identifier, or the link's position among the favourite links.
    QString identifier;
    QString name;
    QString phoneLabel;
    QString phone; // empty when the contact has no number
    QString emailLabel;
    QString email; // empty when the contact has no address
    QString link;
    QString linkKind; // the label of the link's kind ("Zoom")
    /// 1 for an exact name, number or address, 0.7 for a prefix, 0.4 for a part of one.
    double relevance = 0;
};

/// What the desktop's search (KRunner, GNOME Shell) finds in Telverra: contact names folded as the contacts screen
/// folds them (case, accents, ø and ß), numbers by their digits whatever their layout, e-mail addresses, and the
/// favourite meeting links by name and address. Made once per address book; a search scans it.
class DesktopSearchIndex
{
public:
    static constexpr int maximumResults = 20;
    /// Longer queries are cut; a query has at most this many terms.
    static constexpr qsizetype maximumQueryLength = 256;
    static constexpr qsizetype maximumTerms = 8;

    DesktopSearchIndex(const QList<Contact> &contacts, const QList<FavoriteTelcoEntityPtr> &links);

    /// The terms of a query typed in one line: blanks separate them; control characters are dropped; bounded.
    static QStringList terms(const QString &query);
    /// The best results for the terms (every term must be found), best first, at most `limit`.
    QList<DesktopSearchResult> search(QStringList terms, int limit = maximumResults) const;

    qsizetype size() const { return qsizetype(m_entries.size()); }

private:
    struct Entry
    {
        DesktopSearchResult result;
        QString name;                // folded
        QStringList words;           // of the folded name
        QStringList numbers;         // digits only, one per number
        QStringList emails;          // lower case
        QList<QString> numberLabels; // beside numbers
        QList<QString> numberValues;
        QList<QString> emailLabels;
        QList<QString> emailValues;
    };
    // Every entry's folded name, digits and addresses, one after the other in three texts, so that a term is looked
    // for once in each text instead of once per entry; each piece's start and its entry beside it.
    struct Haystack
    {
        QString text;
        std::vector<qsizetype> starts;
        std::vector<quint32> owners;
        void add(const QString &piece, size_t owner);
    };
    /// The entries that hold the term somewhere, in order.
    std::vector<quint32> candidates(const QString &folded, const QString &digits) const;

    std::vector<Entry> m_entries;
    Haystack m_names;
    Haystack m_numbers;
    Haystack m_emails;
};
