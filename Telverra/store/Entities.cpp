#include "Entities.h"

namespace {
AttributeDescription text(const char *name)
{
    return {QString::fromLatin1(name), QMetaType::QString, true};
}
AttributeDescription orderIndexColumn()
{
    return {QStringLiteral("orderIndex"), QMetaType::Int, false};
}
} // namespace

const EntityDescription &RecentCallEntity::entityDescription()
{
    static const EntityDescription entity{QStringLiteral("RecentCallEntity"),
                                          {text("callType"),
                                           text("contactID"),
                                           {QStringLiteral("date"), QMetaType::Double, true},
                                           text("destinationTag"),
                                           text("destinationValue"),
                                           text("telcoID"),
                                           text("url")},
                                          [] { return std::make_shared<RecentCallEntity>(); }};
    return entity;
}

RecentCallEntity::RecentCallEntity()
    : ManagedObject(entityDescription())
{}

std::optional<QDateTime> RecentCallEntity::storedDate() const
{
    const QVariant seconds = value(dateAttribute);
    if (!seconds.isValid()) {
        return std::nullopt;
    }
    return QDateTime::fromMSecsSinceEpoch(qRound64(seconds.toDouble() * 1000.0));
}

void RecentCallEntity::setDate(const std::optional<QDateTime> &date)
{
    setValue(dateAttribute, date ? QVariant(static_cast<double>(date->toMSecsSinceEpoch()) / 1000.0) : QVariant());
}

QDateTime RecentCallEntity::date() const
{
    return storedDate().value_or(QDateTime::currentDateTime());
}

const EntityDescription &FavoriteTelcoEntity::entityDescription()
{
    static const EntityDescription entity{
        QStringLiteral("FavoriteTelcoEntity"),
        {text("telcoName"), text("telcoType"), text("telcoValue"), orderIndexColumn()},
        [] { return std::make_shared<FavoriteTelcoEntity>(); }};
    return entity;
}

FavoriteTelcoEntity::FavoriteTelcoEntity()
    : ManagedObject(entityDescription())
{}

const EntityDescription &FavoriteContactEntity::entityDescription()
{
    static const EntityDescription entity{
        QStringLiteral("FavoriteContactEntity"),
        {text("contactID"), text("familyName"), text("givenName"), orderIndexColumn()},
        [] { return std::make_shared<FavoriteContactEntity>(); }};
    return entity;
}

FavoriteContactEntity::FavoriteContactEntity()
    : ManagedObject(entityDescription())
{}

const EntityDescription &FavoriteActionEntity::entityDescription()
{
    static const EntityDescription entity{
        QStringLiteral("FavoriteActionEntity"),
        {text("actionTag"), text("actionType"), text("actionValue"), text("contactID"), orderIndexColumn()},
        [] { return std::make_shared<FavoriteActionEntity>(); }};
    return entity;
}

FavoriteActionEntity::FavoriteActionEntity()
    : ManagedObject(entityDescription())
{}
