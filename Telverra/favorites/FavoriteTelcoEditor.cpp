#include "FavoriteTelcoEditor.h"

#include "FavoritesDataService.h"
#include "calls/CallsManager.h"

FavoriteTelcoEditor::FavoriteTelcoEditor(QObject *parent)
    : QObject(parent)
{}

QObject *FavoriteTelcoEditor::service() const
{
    return m_service;
}

void FavoriteTelcoEditor::setService(QObject *service)
{
    if (m_service != service) {
        m_service = qobject_cast<FavoritesDataService *>(service);
        Q_EMIT serviceChanged();
    }
}

void FavoriteTelcoEditor::setRecord(const QVariant &record)
{
    m_record = record.value<FavoriteTelcoEntityPtr>();
    Q_EMIT recordChanged();
}

// A text is valid when it is not empty, blanks included; only a change sets the flag.
void FavoriteTelcoEditor::setTelcoName(const QString &name)
{
    if (m_telcoName != name) {
        m_telcoName = name;
        m_telcoNameIsValid = !name.isEmpty();
        Q_EMIT telcoNameChanged();
    }
}

void FavoriteTelcoEditor::setTelcoValue(const QString &value)
{
    if (m_telcoValue != value) {
        m_telcoValue = value;
        m_telcoURLIsValid = !value.isEmpty();
        Q_EMIT telcoValueChanged();
    }
}

void FavoriteTelcoEditor::save()
{
    if (!m_service) {
        return;
    }
    if (m_isEditMode) {
        m_service->updateFavoriteTelco(m_record, m_telcoName, m_telcoValue);
        return;
    }
    m_service->addFavoriteTelco(m_telcoName, rawValue(CallsManager::callTypeForURL(m_telcoValue)), m_telcoValue);
}
