#pragma once

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

class ContactsDataService;

/// What the contacts screen reports beyond what it shows: its rows appearing, the permission alert dismissed, and
/// the errors it meets when it appears.
class ContactsScreen : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// The address book the screen shows.
    Q_PROPERTY(QObject *service READ service WRITE setService NOTIFY serviceChanged)
public:
    explicit ContactsScreen(QObject *parent = nullptr);

    QObject *service() const;
    void setService(QObject *service);

    /// The screen appeared: an address book that cannot be reached any more is reported.
    Q_INVOKABLE void appeared();
    /// A row appeared for the contact with this identifier.
    Q_INVOKABLE void rowAppeared(const QString &identifier);
    /// The user dismissed the permission alert.
    Q_INVOKABLE void permissionAlertDismissed();

Q_SIGNALS:
    void serviceChanged();

private:
    QPointer<ContactsDataService> m_service;
};
