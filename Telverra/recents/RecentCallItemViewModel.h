#pragma once

#include "store/Entities.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

/// One row of the history: the record and the rules that decide what the row shows.
struct RecentCallItemViewModel
{
    RecentCallEntityPtr recentCallItem;

    /// What a row shows beside its avatar: a person (the personal kinds), a meeting link with its kind's label, or
    /// no text (Skype, Slack, Telegram, unrecognised or unknown types).
    enum class RowKind
    {
        personal,
        meeting,
        none
    };
    static RowKind rowKind(const QString &storedCallType);

    /// "today", "yesterday", the weekday name within the last seven days, else "d MMM, yyyy".
    static QString relativeDateText(const QDateTime &date, const QDateTime &now, const QLocale &locale);
};
