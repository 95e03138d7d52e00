#include "RecentCallsDataService.h"

#include "common/Trace.h"
#include "store/CoreDataManager.h"

RecentCallsDataService::RecentCallsDataService(CoreDataManager *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{}

CoreDataManager &RecentCallsDataService::store() const
{
    return m_store ? *m_store : CoreDataManager::shared();
}

void RecentCallsDataService::fetchRecentCalls()
{
    auto fetched = store().fetchEntities<RecentCallEntity>(std::nullopt, QList<SortDescriptor>{{u"date"_qs, false}});
    if (!fetched.ok()) {
        Trace::line(u"- Couldn't fetch recent calls:" + fetched.error);
        return;
    }
    m_savedRecents = std::move(fetched.records);
    Q_EMIT savedRecentsChanged();
}

void RecentCallsDataService::addRecentCall(const QString &destinationValue, CallTypes callType,
                                           const QString &contactID, const QString &destinationTag)
{
    auto record = store().viewContext().insertNewObject<RecentCallEntity>();
    record->setDate(QDateTime::currentDateTime());
    record->setCallType(rawValue(callType));
    record->setDestinationValue(destinationValue);
    record->setDestinationTag(destinationTag);
    record->setTelcoID(QString());
    switch (callType) {
    case CallTypes::telephone:
    case CallTypes::messages:
    case CallTypes::mail:
    case CallTypes::facetime:
    case CallTypes::facetimeaudio:
        record->setUrl(launchPrefix(callType) + destinationValue);
        break;
    default:
        record->setUrl(destinationValue);
        break;
    }
    // Every kind keeps the identifier it was given, meetings included.
    record->setContactID(contactID);
    store().save();
}

void RecentCallsDataService::deleteAllRecentCalls()
{
    const QList<RecentCallEntityPtr> records = m_savedRecents;
    for (const RecentCallEntityPtr &record : records) {
        store().viewContext().deleteObject(record.get());
        store().save();
    }
}

void RecentCallsDataService::deleteRecentCall(const RecentCallEntityPtr &record)
{
    if (!record) {
        return;
    }
    store().viewContext().deleteObject(record.get());
    store().save();
}
