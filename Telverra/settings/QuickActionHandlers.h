#pragma once

#include <QObject>
#include <QPointer>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

class CallsManager;

/// Which application opens each kind of quick action, as the settings show it. Applications come and go while the
/// program runs, so the settings read them again (refresh()) each time the tab is shown.
class QuickActionHandlers : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QObject *callsManager READ callsManager WRITE setCallsManager NOTIFY callsManagerChanged)
    /// By the kind's raw value ("telephone", "messages", "mail", "facetime", "facetime-audio"): a map with "state"
    /// ("application", "none" or "chosenAtLaunch") and "name" (the application's name).
    Q_PROPERTY(QVariantMap handlers READ handlers NOTIFY handlersChanged)
public:
    explicit QuickActionHandlers(QObject *parent = nullptr);

    QObject *callsManager() const;
    void setCallsManager(QObject *manager);
    const QVariantMap &handlers() const { return m_handlers; }

    /// Looks every kind up again.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void callsManagerChanged();
    void handlersChanged();

private:
    QPointer<CallsManager> m_callsManager;
    QVariantMap m_handlers;
};
