#include "RecentCallItemViewModel.h"

#include "calls/CallTypes.h"

#include <QCoreApplication>

RecentCallItemViewModel::RowKind RecentCallItemViewModel::rowKind(const QString &storedCallType)
{
    const std::optional<CallTypes> type = callTypesFromRawValue(storedCallType);
    if (!type) {
        return RowKind::none;
    }
    switch (*type) {
    case CallTypes::telephone:
    case CallTypes::mail:
    case CallTypes::facetime:
    case CallTypes::facetimeaudio:
    case CallTypes::messages:
        return RowKind::personal;
    case CallTypes::googleMeet:
    case CallTypes::googleMeetNew:
    case CallTypes::webex:
    case CallTypes::zoom:
    case CallTypes::jitsi:
        return RowKind::meeting;
    default:
        return RowKind::none;
    }
}

QString RecentCallItemViewModel::relativeDateText(const QDateTime &date, const QDateTime &now, const QLocale &locale)
{
    const QDate day = date.date();
    const QDate today = now.date();
    if (day == today) {
        //: The day of a call in the history
        return QCoreApplication::translate("RecentCallItemViewModel", "today");
    }
    if (day == today.addDays(-1)) {
        //: The day of a call in the history
        return QCoreApplication::translate("RecentCallItemViewModel", "yesterday");
    }
    const QDateTime weekStart = today.addDays(-7).startOfDay();
    if (date <= now && date >= weekStart) {
        return locale.standaloneDayName(day.dayOfWeek(), QLocale::LongFormat);
    }
    return locale.toString(date, u"d MMM, yyyy");
}
