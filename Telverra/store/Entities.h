#pragma once

#include "ManagedObject.h"

#include <QDateTime>

/// One launched call, message, mail or meeting.
class RecentCallEntity : public ManagedObject
{
public:
    enum Attribute
    {
        callTypeAttribute,
        contactIDAttribute,
        dateAttribute,
        destinationTagAttribute,
        destinationValueAttribute,
        telcoIDAttribute,
        urlAttribute
    };
    static const EntityDescription &entityDescription();
    RecentCallEntity();

    std::optional<QString> storedCallType() const { return stringValue(callTypeAttribute); }
    std::optional<QString> storedContactID() const { return stringValue(contactIDAttribute); }
    std::optional<QDateTime> storedDate() const;
    std::optional<QString> storedDestinationTag() const { return stringValue(destinationTagAttribute); }
    std::optional<QString> storedDestinationValue() const { return stringValue(destinationValueAttribute); }
    std::optional<QString> storedTelcoID() const { return stringValue(telcoIDAttribute); }
    std::optional<QString> storedUrl() const { return stringValue(urlAttribute); }

    void setCallType(const std::optional<QString> &value) { setString(callTypeAttribute, value); }
    void setContactID(const std::optional<QString> &value) { setString(contactIDAttribute, value); }
    void setDate(const std::optional<QDateTime> &value);
    void setDestinationTag(const std::optional<QString> &value) { setString(destinationTagAttribute, value); }
    void setDestinationValue(const std::optional<QString> &value) { setString(destinationValueAttribute, value); }
    void setTelcoID(const std::optional<QString> &value) { setString(telcoIDAttribute, value); }
    void setUrl(const std::optional<QString> &value) { setString(urlAttribute, value); }

    // What the screens read: the stored value, or a fixed default when there is none.
    QString callType() const { return storedCallType().value_or(u"unknown type"_qs); }
    QString contactID() const { return storedContactID().value_or(u"unknown contactId"_qs); }
    /// Now, at every read, when no date is stored.
    QDateTime date() const;
    QString destinationTag() const { return storedDestinationTag().value_or(u"unknown destinationTag"_qs); }
    QString destinationValue() const { return storedDestinationValue().value_or(u"unknown destinationValue"_qs); }
    QString telcoID() const { return storedTelcoID().value_or(u"unknown telcoId"_qs); }
    QString url() const { return storedUrl().value_or(u"unknown url"_qs); }
};

/// A saved meeting link (a "telco") with the name the user gave it.
class FavoriteTelcoEntity : public ManagedObject
{
public:
    enum Attribute
    {
        telcoNameAttribute,
        telcoTypeAttribute,
        telcoValueAttribute,
        orderIndexAttribute
    };
    static const EntityDescription &entityDescription();
    FavoriteTelcoEntity();

    std::optional<QString> storedTelcoName() const { return stringValue(telcoNameAttribute); }
    std::optional<QString> storedTelcoType() const { return stringValue(telcoTypeAttribute); }
    std::optional<QString> storedTelcoValue() const { return stringValue(telcoValueAttribute); }
    void setTelcoName(const std::optional<QString> &value) { setString(telcoNameAttribute, value); }
    void setTelcoType(const std::optional<QString> &value) { setString(telcoTypeAttribute, value); }
    void setTelcoValue(const std::optional<QString> &value) { setString(telcoValueAttribute, value); }
    qint32 orderIndex() const { return value(orderIndexAttribute).toInt(); }
    void setOrderIndex(qint32 index) { setValue(orderIndexAttribute, index); }

    // The favourites share one default whatever the attribute.
    QString telcoName() const { return storedTelcoName().value_or(u"unknown type"_qs); }
    QString telcoType() const { return storedTelcoType().value_or(u"unknown type"_qs); }
    QString telcoValue() const { return storedTelcoValue().value_or(u"unknown type"_qs); }
};

/// An address-book person marked as favourite; refers to the person by identifier only.
class FavoriteContactEntity : public ManagedObject
{
public:
    enum Attribute
    {
        contactIDAttribute,
        familyNameAttribute,
        givenNameAttribute,
        orderIndexAttribute
    };
    static const EntityDescription &entityDescription();
    FavoriteContactEntity();

    std::optional<QString> storedContactID() const { return stringValue(contactIDAttribute); }
    std::optional<QString> storedFamilyName() const { return stringValue(familyNameAttribute); }
    std::optional<QString> storedGivenName() const { return stringValue(givenNameAttribute); }
    void setContactID(const std::optional<QString> &value) { setString(contactIDAttribute, value); }
    void setFamilyName(const std::optional<QString> &value) { setString(familyNameAttribute, value); }
    void setGivenName(const std::optional<QString> &value) { setString(givenNameAttribute, value); }
    qint32 orderIndex() const { return value(orderIndexAttribute).toInt(); }
    void setOrderIndex(qint32 index) { setValue(orderIndexAttribute, index); }

    QString contactID() const { return storedContactID().value_or(u"unknown type"_qs); }
    QString familyName() const { return storedFamilyName().value_or(u"unknown type"_qs); }
    QString givenName() const { return storedGivenName().value_or(u"unknown type"_qs); }
};

/// A favourite quick action on a contact's detail. Part of the stored model, though this version never makes one.
class FavoriteActionEntity : public ManagedObject
{
public:
    enum Attribute
    {
        actionTagAttribute,
        actionTypeAttribute,
        actionValueAttribute,
        contactIDAttribute,
        orderIndexAttribute
    };
    static const EntityDescription &entityDescription();
    FavoriteActionEntity();

    std::optional<QString> storedActionTag() const { return stringValue(actionTagAttribute); }
    std::optional<QString> storedActionType() const { return stringValue(actionTypeAttribute); }
    std::optional<QString> storedActionValue() const { return stringValue(actionValueAttribute); }
    std::optional<QString> storedContactID() const { return stringValue(contactIDAttribute); }
    void setActionTag(const std::optional<QString> &value) { setString(actionTagAttribute, value); }
    void setActionType(const std::optional<QString> &value) { setString(actionTypeAttribute, value); }
    void setActionValue(const std::optional<QString> &value) { setString(actionValueAttribute, value); }
    void setContactID(const std::optional<QString> &value) { setString(contactIDAttribute, value); }
    qint32 orderIndex() const { return value(orderIndexAttribute).toInt(); }
    void setOrderIndex(qint32 index) { setValue(orderIndexAttribute, index); }

    QString actionTag() const { return storedActionTag().value_or(u"unknown type"_qs); }
    QString actionType() const { return storedActionType().value_or(u"unknown type"_qs); }
    QString actionValue() const { return storedActionValue().value_or(u"unknown type"_qs); }
    QString contactID() const { return storedContactID().value_or(u"unknown type"_qs); }
};

using RecentCallEntityPtr = std::shared_ptr<RecentCallEntity>;
using FavoriteTelcoEntityPtr = std::shared_ptr<FavoriteTelcoEntity>;
using FavoriteContactEntityPtr = std::shared_ptr<FavoriteContactEntity>;
using FavoriteActionEntityPtr = std::shared_ptr<FavoriteActionEntity>;

// Carried through QML as opaque values (a favourite link between its row and its editor).
Q_DECLARE_METATYPE(FavoriteTelcoEntityPtr)
