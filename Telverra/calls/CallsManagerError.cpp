#include "CallsManagerError.h"

QString CallsManagerError::errorDescription() const
{
    switch (m_case) {
    case Case::invalidNumber:
        return u"Invalid Number used for CallManager API with number: " + m_text;
    case Case::invalidTelcoType:
        return u"Telco not supported: " + m_text;
    case Case::errorCreatingCall:
        return u"Error Creating call in Workspace with number: " + m_text;
    case Case::errorCreatingTelco:
        return u"Error Creating telco in browser: " + m_text;
    case Case::errorCreatingeMail:
        return u"Error Creating eMail: " + m_text;
    case Case::noApplication:
    case Case::applicationFailed:
        return m_text;
    }
    Q_UNREACHABLE();
    return m_text;
}
