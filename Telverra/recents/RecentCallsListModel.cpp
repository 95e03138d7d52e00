#include "RecentCallsListModel.h"

#include "calls/CallTypes.h"
#include "contacts/ContactLabelNames.h"
#include "contacts/ContactsDataService.h"
#include "contacts/ContactsListModel.h"
#include "recents/RecentCallItemViewModel.h"

RecentCallsListModel::RecentCallsListModel(const ContactsDataService &contacts, QObject *parent)
    : KeyedListModel(parent)
    , m_contacts(contacts)
{
    // Another address book may name other people: the rows' names and avatars are read again.
    connect(&contacts, &ContactsDataService::allContactsChanged, this, [this] {
        if (!m_rows.isEmpty()) {
            Q_EMIT dataChanged(index(0), index(count() - 1),
                               {titleRole, hasContactRole, contactInitialsRole, contactPhotoRole});
        }
    });
}

void RecentCallsListModel::setRecords(const QList<RecentCallEntityPtr> &records)
{
    const int before = count();
    replaceRows(m_rows, records, [](const RecentCallEntityPtr &record) { return record.get(); });
    if (count() != before) {
        Q_EMIT countChanged();
    }
}

int RecentCallsListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

RecentCallEntityPtr RecentCallsListModel::record(int row) const
{
    return row >= 0 && row < m_rows.size() ? m_rows.at(row) : nullptr;
}

QVariant RecentCallsListModel::data(const QModelIndex &index, int role) const
{
    const RecentCallEntityPtr recent = record(index.row());
    if (!recent) {
        return {};
    }
    const QString storedType = recent->callType();
    const std::optional<CallTypes> type = callTypesFromRawValue(storedType);
    const RecentCallItemViewModel::RowKind kind = RecentCallItemViewModel::rowKind(storedType);
    // The person of a personal kind, found by the record's contact identifier.
    auto person = [&] {
        return kind == RecentCallItemViewModel::RowKind::personal ? m_contacts.record(recent->contactID())
                                                                  : SharedVCardContact();
    };
    switch (role) {
    case destinationValueRole:
        return recent->destinationValue();
    case destinationTagRole:
        return recent->destinationTag();
    case callTypeRole:
        return storedType;
    case rowKindRole:
        return kind == RecentCallItemViewModel::RowKind::personal  ? QStringLiteral("personal")
               : kind == RecentCallItemViewModel::RowKind::meeting ? QStringLiteral("meeting")
                                                                   : QStringLiteral("none");
    case titleRole:
        if (kind == RecentCallItemViewModel::RowKind::personal) {
            // Nobody in the address book with that identifier: the number or address is the title.
            const SharedVCardContact contact = person();
            const QString name = contact ? ContactsListModel::displayName(*contact) : QString();
            return name.isEmpty() ? recent->destinationValue() : name;
        }
        return kind == RecentCallItemViewModel::RowKind::meeting ? recent->destinationValue() : QString();
    case subtitleRole:
        if (kind == RecentCallItemViewModel::RowKind::personal) {
            return QString(ContactLabels::displayName(recent->destinationTag()) + u' ' + recent->destinationValue());
        }
        return kind == RecentCallItemViewModel::RowKind::meeting && type ? label(*type) : QString();
    case relativeDateRole:
        return RecentCallItemViewModel::relativeDateText(recent->date(), QDateTime::currentDateTime(),
                                                         QLocale::system());
    case iconRole:
        return type ? icon(*type) : QStringLiteral("minus.circle.fill");
    case hasContactRole:
        return bool(person());
    case contactInitialsRole: {
        const SharedVCardContact contact = person();
        return contact ? ContactsListModel::initials(*contact) : QString();
    }
    case contactPhotoRole: {
        const SharedVCardContact contact = person();
        return contact ? ContactsListModel::photoSource(contact) : QString();
    }
    default:
        return {};
    }
}

QHash<int, QByteArray> RecentCallsListModel::roleNames() const
{
    return {{destinationValueRole, "destinationValue"},
            {destinationTagRole, "destinationTag"},
            {callTypeRole, "callType"},
            {rowKindRole, "rowKind"},
            {titleRole, "title"},
            {subtitleRole, "subtitle"},
            {relativeDateRole, "relativeDate"},
            {iconRole, "symbolName"},
            {hasContactRole, "hasContact"},
            {contactInitialsRole, "contactInitials"},
            {contactPhotoRole, "contactPhoto"}};
}
