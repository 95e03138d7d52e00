#include "AccessibleActivation.h"

#include <QCoreApplication>
#include <QKeyEvent>

AccessibleActivation::AccessibleActivation(QObject *parent)
    : QObject(parent)
{}

void AccessibleActivation::press(QQuickItem *control) const
{
    if (!control || !control->isEnabled() || !control->isVisible()) {
        return;
    }
    // Sent to the control itself: the keyboard focus stays where the user left it.
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    QCoreApplication::sendEvent(control, &press);
    QKeyEvent release(QEvent::KeyRelease, Qt::Key_Space, Qt::NoModifier, QStringLiteral(" "));
    QCoreApplication::sendEvent(control, &release);
}
