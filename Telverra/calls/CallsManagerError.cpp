#include "CallsManagerError.h"

namespace {

const char *prefixedText(CallsManagerError::Case errorCase)
{
    switch (errorCase) {
    case CallsManagerError::Case::invalidNumber:
        return QT_TRANSLATE_NOOP("CallsManagerError", "Invalid Number used for CallManager API with number: %1");
    case CallsManagerError::Case::invalidTelcoType:
        return QT_TRANSLATE_NOOP("CallsManagerError", "Telco not supported: %1");
    case CallsManagerError::Case::errorCreatingCall:
        return QT_TRANSLATE_NOOP("CallsManagerError", "Error Creating call in Workspace with number: %1");
    case CallsManagerError::Case::errorCreatingTelco:
        return QT_TRANSLATE_NOOP("CallsManagerError", "Error Creating telco in browser: %1");
    case CallsManagerError::Case::errorCreatingeMail:
        return QT_TRANSLATE_NOOP("CallsManagerError", "Error Creating eMail: %1");
    case CallsManagerError::Case::noApplication:
    case CallsManagerError::Case::applicationFailed:
        break;
    }
    return nullptr; // shown as it stands
}

} // namespace

QString CallsManagerError::errorDescription() const
{
    const char *text = prefixedText(m_case);
    return text ? QString::fromUtf8(text).arg(m_text) : m_text;
}

QString CallsManagerError::localizedDescription() const
{
    const char *text = prefixedText(m_case);
    return text ? tr(text).arg(m_localizedText) : m_localizedText;
}
