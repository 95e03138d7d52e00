#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include <functional>

class HomeWindowViewModel;

/// org.freedesktop.Application, on the window's bus name and object: the desktop activates the running window
/// (its launcher, a second start, D-Bus activation), runs the desktop entry's actions, and is told cleanly that
/// Telverra opens no files.
class DesktopActivation : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    /// The desktop entry's actions: the menu commands "Create new Google Meet call" and "Make call from clipboard",
    /// and the dialer.
    static const QStringList actions;

    /// `showWindow` brings the window to the front, with the launcher's activation token or startup id when the
    /// call carries one, and runs the action named, if any.
    DesktopActivation(QObject *exported, std::function<void(const QString &action, const QString &token)> showWindow);

    /// Runs an action on the view model; false for a name that is none of them.
    static bool runAction(HomeWindowViewModel &viewModel, const QString &name);

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameter, const QVariantMap &platformData,
                        const QDBusMessage &message);
    void Open(const QStringList &uris, const QVariantMap &platformData, const QDBusMessage &message);

Q_SIGNALS:
    /// A call came: the desktop uses the program.
    void used();

private:
    std::function<void(const QString &, const QString &)> m_showWindow;
};
