#include "ContactsListModel.h"

#include "ContactFiling.h"
#include "SelectableKeyTag.h"
#include "common/ReleaseMemory.h"
#include "settings/Preferences.h"

#include <QUrl>
#include <QtConcurrent>

ContactsListModel::ContactsListModel(Preferences &preferences, bool lettered, QObject *parent)
    : KeyedListModel(parent)
    , m_preferences(preferences)
    , m_lettered(lettered)
{
    // The rows in view show a changed preference at once; the others read it when they are drawn.
    connect(&m_preferences, &Preferences::valueChanged, this, [this](const QString &name) {
        if (name.startsWith(u"quickActionIsSetFor") && !m_rows.isEmpty()) {
            Q_EMIT dataChanged(index(0), index(int(m_rows.size() - 1)), {quickActionsRole});
        }
    });
}

ContactsListModel::Computed ContactsListModel::compute(const QList<SharedVCardContact> &records, bool lettered)
{
    Computed computed;
    if (!lettered) {
        computed.contactCount = int(records.size());
        QHash<const VCardContact *, qint32> seen;
        for (const SharedVCardContact &record : records) {
            computed.rows.append({record, 0, false, seen[record.get()]++});
        }
        return computed;
    }
    const ContactFiling::Sections sections = ContactFiling::sections(records);
    computed.letters = sections.letters;
    computed.contactCount = int(records.size());
    for (qsizetype section = 0; section < sections.members.size(); ++section) {
        const bool underNumbers = sections.letters[section] == u"#";
        for (qsizetype position : sections.members[section]) {
            computed.rows.append({records[position], qint32(section), underNumbers, 0});
        }
    }
    return computed;
}

void ContactsListModel::setContacts(const QList<Contact> &contacts)
{
    QList<SharedVCardContact> records;
    records.reserve(contacts.size());
    for (const Contact &contact : contacts) {
        records.append(contact.record());
    }
    const quint64 generation = ++m_generation;
    if (records.size() < backgroundThreshold) {
        apply(compute(records, m_lettered));
        return;
    }
    auto *watcher = new QFutureWatcher<Computed>(this);
    connect(watcher, &QFutureWatcher<Computed>::finished, this, [this, watcher, generation] {
        watcher->deleteLater();
        if (generation == m_generation) { // a newer list may have come meanwhile
            apply(watcher->result());
        }
    });
    watcher->setFuture(QtConcurrent::run(&ContactsListModel::compute, std::move(records), m_lettered));
}

void ContactsListModel::apply(Computed computed)
{
    // A row's section is its letter's position, so other letters renumber the sections: the shared rows take the
    // new numbers as they are replaced.
    const bool lettersChange = computed.letters != m_letters;
    // Filling the list of a large address book leaves pages behind; a search narrowing it (every keystroke) does not
    // pay for giving them back.
    const bool largeFirstFill = m_rows.isEmpty() && computed.rows.size() > 10000;
    m_letters = std::move(computed.letters);
    replaceRows(m_rows, std::move(computed.rows), [](const Row &row) {
        return std::pair(quintptr(row.record.get()), row.underNumbers ? -1 : row.occurrence);
    });
    if (lettersChange) {
        if (!m_rows.isEmpty()) {
            Q_EMIT dataChanged(index(0), index(int(m_rows.size() - 1)), {letterRole});
        }
        Q_EMIT lettersChanged();
    }
    if (m_contactCount != computed.contactCount) {
        m_contactCount = computed.contactCount;
        Q_EMIT contactCountChanged();
    }
    if (largeFirstFill) {
        releaseFreedMemory(); // what filing the rows took
    }
}

int ContactsListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int ContactsListModel::firstRowOfLetter(const QString &letter) const
{
    const qint32 section = qint32(m_letters.indexOf(letter));
    if (section < 0) {
        return -1;
    }
    // Rows are in section order: a binary search for the section's first row.
    const auto found = std::lower_bound(m_rows.cbegin(), m_rows.cend(), section,
                                        [](const Row &row, qint32 wanted) { return row.section < wanted; });
    return found != m_rows.cend() && found->section == section ? int(found - m_rows.cbegin()) : -1;
}

std::optional<Contact> ContactsListModel::contactAt(int row) const
{
    if (row < 0 || row >= m_rows.size()) {
        return std::nullopt;
    }
    return Contact(m_rows[row].record);
}

QString ContactsListModel::initials(const VCardContact &contact)
{
    QString letters;
    for (const QString *name : {&contact.givenName, &contact.familyName}) {
        if (!name->isEmpty()) {
            letters += name->first(name->front().isHighSurrogate() && name->size() > 1 ? 2 : 1);
        }
    }
    return letters;
}

QString ContactsListModel::displayName(const VCardContact &contact)
{
    const QString name = Contact::fullName(contact);
    return name.isEmpty() ? contact.organizationName : name;
}

QString ContactsListModel::photoSource(const SharedVCardContact &contact)
{
    // The record's address tells one reading of the card from the next, so a changed picture is not taken from the
    // image cache.
    return contact && contact->imageDataAvailable()
               ? QString(u"image://contactphoto/" + QString::number(quintptr(contact.get()), 16) + u'/' +
                         QString::fromLatin1(QUrl::toPercentEncoding(contact->identifier)))
               : QString();
}

QVariantList ContactsListModel::quickActions() const
{
    // The order of the row's buttons; Skype has none, since a contact action of that kind launches nothing.
    static constexpr std::pair<PreferenceKey, CallTypes> buttons[] = {
        {PreferenceKey::quickActionIsSetForPhoneCalls, CallTypes::telephone},
        {PreferenceKey::quickActionIsSetForText, CallTypes::messages},
        {PreferenceKey::quickActionIsSetForEmails, CallTypes::mail},
        {PreferenceKey::quickActionIsSetForFacetimeCalls, CallTypes::facetime},
        {PreferenceKey::quickActionIsSetForFacetimeAudioCalls, CallTypes::facetimeaudio},
    };
    QVariantList actions;
    for (const auto &[key, type] : buttons) {
        if (m_preferences.value(key)) {
            actions.append(rawValue(type));
        }
    }
    return actions;
}

namespace {
QVariantList asVariants(const QList<SelectableKeyTag> &tags)
{
    QVariantList list;
    list.reserve(tags.size());
    for (const SelectableKeyTag &tag : tags) {
        list.append(QVariant::fromValue(tag));
    }
    return list;
}
} // namespace

QVariant ContactsListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size()) {
        return {};
    }
    const Row &row = m_rows[index.row()];
    const VCardContact &contact = *row.record;
    switch (role) {
    case identifierRole:
        return contact.identifier;
    case nameRole:
        return displayName(contact);
    case letterRole:
        return m_letters.value(row.section);
    case initialsRole:
        return initials(contact);
    case isCompanyRole:
        return contact.givenName.isEmpty() && contact.familyName.isEmpty();
    case photoRole:
        return photoSource(row.record);
    case phoneTagsRole:
        return asVariants(
            SelectableKeyTag::fromGroups(ContactLabels::phoneNumbersByLabel(contact), CallTypes::telephone));
    case emailTagsRole:
        return asVariants(SelectableKeyTag::fromGroups(ContactLabels::emailAddressesByLabel(contact), CallTypes::mail));
    case quickActionsRole:
        return quickActions();
    default:
        return {};
    }
}

QHash<int, QByteArray> ContactsListModel::roleNames() const
{
    return {{identifierRole, "identifier"}, {nameRole, "name"},           {letterRole, "letter"},
            {initialsRole, "initials"},     {isCompanyRole, "isCompany"}, {photoRole, "photo"},
            {phoneTagsRole, "phoneTags"},   {emailTagsRole, "emailTags"}, {quickActionsRole, "quickActions"}};
}
