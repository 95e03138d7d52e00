#include "QuickActionHandlers.h"

#include "calls/CallsManager.h"
#include "calls/Workspace.h"

QuickActionHandlers::QuickActionHandlers(QObject *parent)
    : QObject(parent)
{}

QObject *QuickActionHandlers::callsManager() const
{
    return m_callsManager;
}

void QuickActionHandlers::setCallsManager(QObject *manager)
{
    m_callsManager = qobject_cast<CallsManager *>(manager);
    Q_EMIT callsManagerChanged();
    refresh();
}

void QuickActionHandlers::refresh()
{
    QVariantMap handlers;
    if (m_callsManager) {
        for (CallTypes type : {CallTypes::telephone, CallTypes::messages, CallTypes::mail, CallTypes::facetime,
                               CallTypes::facetimeaudio}) {
            const SchemeHandler handler = m_callsManager->handlerFor(type);
            const QString state = handler.state == SchemeHandler::State::application      ? u"application"_qs
                                  : handler.state == SchemeHandler::State::chosenAtLaunch ? u"chosenAtLaunch"_qs
                                                                                          : u"none"_qs;
            handlers.insert(rawValue(type), QVariantMap{{u"state"_qs, state}, {u"name"_qs, handler.name}});
        }
    }
    if (handlers != m_handlers) {
        m_handlers = handlers;
        Q_EMIT handlersChanged();
    }
}
