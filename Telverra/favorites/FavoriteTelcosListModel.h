#pragma once

#include "common/KeyedListModel.h"
#include "store/Entities.h"

class FavoritesDataService;

/// The saved meeting links as the favourites screen lists them, in the user's order. The view model hands it its list;
/// a link moved by the user is a row moved.
class FavoriteTelcosListModel : public KeyedListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role
    {
        nameRole = Qt::UserRole + 1,
        kindRole, // the label of the stored kind ("Zoom"), "unknown type" where none is stored
        valueRole,
        recordRole, // the record itself, opaque to QML: what the editor edits
    };

    explicit FavoriteTelcosListModel(FavoritesDataService &service, QObject *parent = nullptr);

    void setRecords(const QList<FavoriteTelcoEntityPtr> &records);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return int(m_rows.size()); }

    /// "Remove from Favorites": the link deleted from the store, then the links fetched again.
    Q_INVOKABLE void removeAt(int row);

Q_SIGNALS:
    void countChanged();

private:
    FavoritesDataService &m_service;
    QList<FavoriteTelcoEntityPtr> m_rows;
};
