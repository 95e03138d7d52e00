#pragma once

#include "calls/CallTypes.h"
#include "store/Entities.h"

#include <QObject>

class CoreDataManager;

/// The history of launched calls: the published list, newest first, and the operations that add and clear it.
/// Never reloads on its own: callers fetch again after a change.
class RecentCallsDataService : public QObject
{
    Q_OBJECT
public:
    /// Works on the shared store unless given another.
    explicit RecentCallsDataService(CoreDataManager *store = nullptr, QObject *parent = nullptr);

    const QList<RecentCallEntityPtr> &savedRecents() const { return m_savedRecents; }

    /// Reloads savedRecents from the store, newest first; on failure the list stays and a line is written.
    Q_INVOKABLE void fetchRecentCalls();
    /// Creates and saves one record stamped now; for the personal kinds the url is the launch prefix and the value.
    void addRecentCall(const QString &destinationValue, CallTypes callType, const QString &contactID,
                       const QString &destinationTag);
    /// Deletes every record of savedRecents, one save per record.
    Q_INVOKABLE void deleteAllRecentCalls();
    /// Deletes one record and saves (the history row's "Remove from history").
    void deleteRecentCall(const RecentCallEntityPtr &record);

Q_SIGNALS:
    void savedRecentsChanged();

private:
    CoreDataManager &store() const;

    CoreDataManager *m_store;
    QList<RecentCallEntityPtr> m_savedRecents;
};
