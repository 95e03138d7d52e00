#include "ContactsScreen.h"

#include "ContactStoreManager.h"
#include "ContactStoreManagerError.h"
#include "ContactsDataService.h"
#include "common/Trace.h"

ContactsScreen::ContactsScreen(QObject *parent)
    : QObject(parent)
{}

QObject *ContactsScreen::service() const
{
    return m_service;
}

void ContactsScreen::setService(QObject *service)
{
    if (m_service != service) {
        m_service = qobject_cast<ContactsDataService *>(service);
        Q_EMIT serviceChanged();
    }
}

void ContactsScreen::appeared()
{
    if (!m_service) {
        return;
    }
    // Folders that could be read when the address book was loaded may have been locked since.
    const ContactStore::AuthorizationStatus status = m_service->manager().contactStore().authorizationStatus();
    if (status == ContactStore::AuthorizationStatus::denied ||
        status == ContactStore::AuthorizationStatus::restricted) {
        Trace::line(u"- Error on appear of allContactsView is " +
                    ContactStoreManagerError::permissionError().description());
    }
}

void ContactsScreen::rowAppeared(const QString &identifier)
{
    const std::optional<Contact> contact = m_service ? m_service->contact(identifier) : std::nullopt;
    Trace::line(u"on appear ContactCellView for contact " +
                (contact ? contact->description() : u"Contact(id: " + identifier + u')'));
}

void ContactsScreen::permissionAlertDismissed()
{
    Trace::line(QStringLiteral("- dismiss and send message to allow access in preferences"));
}
