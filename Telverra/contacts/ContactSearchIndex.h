#pragma once

#include "Contact.h"

#include <QList>
#include <QString>

#include <vector>

/// The contacts' names prepared for searching (full name and organisation folded as searches fold them), made once
/// per address book so that each search only scans.
class ContactSearchIndex
{
public:
    explicit ContactSearchIndex(const QList<Contact> &contacts);

    /// The positions of the contacts whose full name or organisation holds the text, among those with a given,
    /// family or organisation name; in order.
    std::vector<qsizetype> matches(const QString &searchText) const;

private:
    std::vector<QString> m_fullNames;
    std::vector<QString> m_organizations;
    std::vector<bool> m_named;
};
