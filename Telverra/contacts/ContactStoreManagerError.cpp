#include "ContactStoreManagerError.h"

QString ContactStoreManagerError::id() const
{
    switch (m_case) {
    case Case::fetchError:
        return QStringLiteral("FetchError");
    case Case::containerError:
        return QStringLiteral("ContainerError");
    case Case::contactWithContactIDNotFound:
        return QStringLiteral("ContactWithContactIDNotFound");
    case Case::permissionError:
        return QStringLiteral("PermisionError");
    }
    Q_UNREACHABLE();
    return {};
}

QString ContactStoreManagerError::description() const
{
    switch (m_case) {
    case Case::fetchError:
        return u"💥! Error fetching contacts: " + m_underlying;
    case Case::containerError:
        return u"💥! Error accessing container: " + m_underlying +
               u". Please go to settings and allow the app to access contacts.";
    case Case::contactWithContactIDNotFound:
        return u"💥! Error trying to find contact with specific ContactID: " + m_underlying + u".";
    case Case::permissionError:
        return QStringLiteral("💥! Permission error when attempting to access contact store. Please go to settings and "
                              "allow the app to access contacts.");
    }
    Q_UNREACHABLE();
    return {};
}
