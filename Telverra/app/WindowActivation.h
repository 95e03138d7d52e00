#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>

class QObject;
class QWindow;

/// Bringing the window to the front for a launcher that allowed it: a Wayland activation token
/// (xdg_activation_v1) or an X11 startup notification id, as org.freedesktop.Application's platform-data and a
/// started program's environment carry them.
namespace WindowActivation {

/// The token in org.freedesktop.Application's platform-data ("activation-token", else "desktop-startup-id").
QString token(const QVariantMap &platformData);

/// This process's own token from its launcher (XDG_ACTIVATION_TOKEN, DESKTOP_STARTUP_ID) as platform-data, to hand to
/// the running window with a command; empty without one.
QVariantMap platformDataFromEnvironment();

/// The variables a program started on the window's behalf gets so that its window may take the focus.
QList<QPair<QString, QString>> environmentFor(const QString &token);

/// Shows the window and asks the desktop to give it the focus, with the launcher's token when there is one.
void bringToFront(QWindow *window, const QString &token);

/// Calls `then(true)` as soon as a window of the application has the keyboard focus (at once when one has it), or
/// `then(false)` after `milliseconds` without it. Nothing is called once `context` is gone.
void whenFocused(QObject *context, int milliseconds, std::function<void(bool focused)> then);

} // namespace WindowActivation
