#pragma once

#include "VCardContact.h"

#include <QList>
#include <QObject>
#include <QString>

#include <functional>

/// The system address book: containers (address books) of contacts, the user's permission, and a signal when
/// anything in it changed. Failures are the error's text.
class ContactStore : public QObject
{
    Q_OBJECT
public:
    /// Numbered as the platforms number them.
    enum class AuthorizationStatus
    {
        notDetermined = 0,
        restricted = 1,
        denied = 2,
        authorized = 3
    };

    struct Container
    {
        QString identifier;
        QString name;
    };
    struct ContainersResult
    {
        QList<Container> containers;
        QString error;
    };
    struct ContactsResult
    {
        QList<SharedVCardContact> contacts;
        QString error;
    };
    struct ContactResult
    {
        std::optional<VCardContact> contact;
        QString error;
    };

    using QObject::QObject;

    virtual AuthorizationStatus authorizationStatus() const = 0;
    /// Asks for access; the completion gets whether it was granted and an error text (empty when none).
    virtual void requestAccess(const std::function<void(bool granted, const QString &error)> &completion) = 0;
    virtual ContainersResult containers() = 0;
    /// The contacts of one container, in the store's order.
    virtual ContactsResult unifiedContacts(const QString &containerIdentifier) = 0;
    virtual ContactResult unifiedContact(const QString &identifier) = 0;

Q_SIGNALS:
    /// Something in the address book changed.
    void didChange();
};
