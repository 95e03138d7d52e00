#include "CitySearchModel.h"

#include "weather/CityDatabase.h"

CitySearchModel::CitySearchModel(QObject *parent)
    : QAbstractListModel(parent)
{
    CityDatabase::whenLoaded(this, [this](const CityDatabase &) {
        m_database = CityDatabase::loaded();
        search();
    });
}

CitySearchModel::~CitySearchModel() = default;

void CitySearchModel::setText(const QString &text)
{
    if (text == m_text) {
        return;
    }
    m_text = text;
    Q_EMIT textChanged();
    search();
}

void CitySearchModel::search()
{
    QList<qsizetype> found = m_database ? m_database->search(m_text) : QList<qsizetype>();
    if (found == m_found) {
        return;
    }
    beginResetModel();
    m_found = std::move(found);
    endResetModel();
    Q_EMIT countChanged();
}

QVariantMap CitySearchModel::city(int row) const
{
    if (!m_database || row < 0 || row >= m_found.size()) {
        return {};
    }
    const City &city = m_database->at(m_found.at(row));
    return {{QStringLiteral("name"), city.name},
            {QStringLiteral("country"), city.country},
            {QStringLiteral("latitude"), city.latitude},
            {QStringLiteral("longitude"), city.longitude}};
}

int CitySearchModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_found.size());
}

QVariant CitySearchModel::data(const QModelIndex &index, int role) const
{
    if (!m_database || !checkIndex(index, CheckIndexOption::IndexIsValid)) {
        return {};
    }
    const City &city = m_database->at(m_found.at(index.row()));
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return city.name;
    case DetailRole:
        return city.region.isEmpty() || city.region == city.name ? city.country : city.region + u", " + city.country;
    default:
        return {};
    }
}

QHash<int, QByteArray> CitySearchModel::roleNames() const
{
    return {{NameRole, "name"}, {DetailRole, "detail"}};
}
