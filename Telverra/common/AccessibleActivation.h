#pragma once

#include <QObject>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

/// What a screen reader's Press or Toggle does on our controls: a press and release of the space bar, delivered to
/// the control alone. Every control answers the space bar as it answers a click (a list row as a double click), so
/// the accessible action takes the click's own path: checkable and exclusive buttons, actions, disabled controls and
/// the signals in their order, with nothing to keep in step with the pointer's handlers.
class AccessibleActivation : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
public:
    explicit AccessibleActivation(QObject *parent = nullptr);

    /// Presses the control as the space bar does; nothing happens to a control that is disabled or not shown.
    Q_INVOKABLE void press(QQuickItem *control) const;
};
