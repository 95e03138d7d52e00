#pragma once

#include "common/KeyedListModel.h"
#include "store/Entities.h"

class ContactsDataService;

/// The history as the Recents screen shows it, one row per record with the texts the row shows. The view model hands
/// it the filtered history; a new call, a removed record or a narrowed search moves only the rows concerned. Names and
/// avatars come from the address book as last read, and follow it.
class RecentCallsListModel : public KeyedListModel
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
        hasContactRole, // the record's contact is in the address book: its avatar is shown
        contactInitialsRole,
        contactPhotoRole,
    };

    explicit RecentCallsListModel(const ContactsDataService &contacts, QObject *parent = nullptr);

    /// The records to show, newest first.
    void setRecords(const QList<RecentCallEntityPtr> &records);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;
    int count() const { return static_cast<int>(m_rows.size()); }
    /// The record shown in a row, or null.
    RecentCallEntityPtr record(int row) const;

Q_SIGNALS:
    void countChanged();

private:
    const ContactsDataService &m_contacts;
    QList<RecentCallEntityPtr> m_rows;
};
