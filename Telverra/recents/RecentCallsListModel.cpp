#include "RecentCallsListModel.h"

#include "app/HomeWindowViewModel.h"
#include "calls/CallTypes.h"
#include "recents/RecentCallItemViewModel.h"

RecentCallsListModel::RecentCallsListModel(HomeWindowViewModel &viewModel, QObject *parent)
    : QAbstractListModel(parent)
    , m_viewModel(viewModel)
{
    connect(&viewModel, &HomeWindowViewModel::allRecentCallsChanged, this, &RecentCallsListModel::rebuild);
    connect(&viewModel, &HomeWindowViewModel::searchTextForRecentsChanged, this, &RecentCallsListModel::rebuild);
    connect(&viewModel, &HomeWindowViewModel::allContactsChanged, this, &RecentCallsListModel::rebuild);
    rebuild();
}

void RecentCallsListModel::rebuild()
{
    beginResetModel();
    m_rows = m_viewModel.filteredRecentCalls();
    m_names.clear();
    for (const Contact &contact : m_viewModel.allContacts()) {
        m_names.insert(contact.id(), contact.fullName());
    }
    endResetModel();
    Q_EMIT countChanged();
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
            const QString name = m_names.value(recent->contactID());
            return name.isEmpty() ? recent->destinationValue() : name;
        }
        return kind == RecentCallItemViewModel::RowKind::meeting ? recent->destinationValue() : QString();
    case subtitleRole:
        if (kind == RecentCallItemViewModel::RowKind::personal) {
            return QString(recent->destinationTag() + u' ' + recent->destinationValue());
        }
        return kind == RecentCallItemViewModel::RowKind::meeting && type ? label(*type) : QString();
    case relativeDateRole:
        return RecentCallItemViewModel::relativeDateText(recent->date(), QDateTime::currentDateTime(),
                                                         QLocale::system());
    case iconRole:
        return type ? icon(*type) : QStringLiteral("minus.circle.fill");
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
            {iconRole, "symbolName"}};
}
