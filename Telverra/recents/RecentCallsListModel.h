#pragma once

#include "store/Entities.h"

#include <QAbstractListModel>
#include <QHash>

class HomeWindowViewModel;

/// The history as the Recents screen shows it: the view model's filtered list, one row per record with the texts the
/// row shows. Rebuilt whenever the history, the search text or the address book changes.
class RecentCallsListModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ count NOTIFY countChanged)
public:
    enum Role
    {
        destinationValueRole = Qt::UserRole + 1,
        destinationTagRole,
        callTypeRole,
        rowKindRole, // "personal", "meeting" or "none"
        titleRole,
        subtitleRole,
        relativeDateRole,
        iconRole,
    };

    explicit RecentCallsListModel(HomeWindowViewModel &viewModel, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return static_cast<int>(m_rows.size()); }
    /// The record shown in a row, or null.
    RecentCallEntityPtr record(int row) const;

Q_SIGNALS:
    void countChanged();

private:
    void rebuild();

    HomeWindowViewModel &m_viewModel;
    QList<RecentCallEntityPtr> m_rows;
    QHash<QString, QString> m_names; // contact identifier → full name
};
