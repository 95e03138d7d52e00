#include "FavoriteTelcosListModel.h"

#include "FavoritesDataService.h"
#include "calls/CallTypes.h"

FavoriteTelcosListModel::FavoriteTelcosListModel(FavoritesDataService &service, QObject *parent)
    : KeyedListModel(parent)
    , m_service(service)
{}

void FavoriteTelcosListModel::setRecords(const QList<FavoriteTelcoEntityPtr> &records)
{
    const int before = count();
    replaceRows(m_rows, records, [](const FavoriteTelcoEntityPtr &record) { return record.get(); });
    // An edited link is the same row with other texts.
    if (!m_rows.isEmpty()) {
        Q_EMIT dataChanged(index(0), index(count() - 1), {nameRole, kindRole, valueRole});
    }
    if (count() != before) {
        Q_EMIT countChanged();
    }
}

int FavoriteTelcosListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QVariant FavoriteTelcosListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size()) {
        return {};
    }
    const FavoriteTelcoEntityPtr &telco = m_rows[index.row()];
    switch (role) {
    case nameRole:
        return telco->telcoName();
    case kindRole: {
        // The kind's label by its stored raw value; a text that is no kind is shown as it is.
        const std::optional<CallTypes> type = callTypesFromRawValue(telco->telcoType());
        return type ? label(*type) : telco->telcoType();
    }
    case valueRole:
        return telco->telcoValue();
    case recordRole:
        return QVariant::fromValue(telco);
    default:
        return {};
    }
}

QHash<int, QByteArray> FavoriteTelcosListModel::roleNames() const
{
    return {{nameRole, "name"}, {kindRole, "kind"}, {valueRole, "value"}, {recordRole, "record"}};
}

void FavoriteTelcosListModel::removeAt(int row)
{
    if (row >= 0 && row < m_rows.size()) {
        m_service.deleteFavoriteTelco(m_rows[row]);
        m_service.fetchFavoriteTelcos();
    }
}
