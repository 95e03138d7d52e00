#include "ContactSearchIndex.h"

#include "common/TextFolding.h"

ContactSearchIndex::ContactSearchIndex(const QList<Contact> &contacts)
{
    const auto count = static_cast<size_t>(contacts.size());
    m_fullNames.reserve(count);
    m_organizations.reserve(count);
    m_named.reserve(count);
    for (const Contact &contact : contacts) {
        const VCardContact &card = contact.contact();
        m_fullNames.push_back(foldForSearch(Contact::fullName(card)));
        m_organizations.push_back(foldForSearch(card.organizationName));
        m_named.push_back(!card.givenName.isEmpty() || !card.familyName.isEmpty() || !card.organizationName.isEmpty());
    }
}

std::vector<qsizetype> ContactSearchIndex::matches(const QString &searchText) const
{
    const QString needle = foldForSearch(searchText);
    std::vector<qsizetype> found;
    for (size_t i = 0; i < m_fullNames.size(); ++i) {
        if (m_named[i] && (m_fullNames[i].contains(needle) || m_organizations[i].contains(needle))) {
            found.push_back(static_cast<qsizetype>(i));
        }
    }
    return found;
}
