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

const char *ContactStoreManagerError::text() const
{
    switch (m_case) {
    case Case::fetchError:
        return QT_TR_NOOP("💥! Error fetching contacts: %1");
    case Case::containerError:
        return QT_TR_NOOP("💥! Error accessing container: %1. Please go to settings and allow the app to access "
                          "contacts.");
    case Case::contactWithContactIDNotFound:
        return QT_TR_NOOP("💥! Error trying to find contact with specific ContactID: %1.");
    case Case::permissionError:
        return QT_TR_NOOP("💥! Permission error when attempting to access contact store. Please go to settings and "
                          "allow the app to access contacts.");
    }
    Q_UNREACHABLE();
    return "";
}

QString ContactStoreManagerError::description() const
{
    const QString text = QString::fromUtf8(this->text());
    return m_case == Case::permissionError ? text : text.arg(m_underlying);
}

QString ContactStoreManagerError::localizedDescription() const
{
    const QString text = tr(this->text());
    return m_case == Case::permissionError ? text : text.arg(m_underlying);
}
