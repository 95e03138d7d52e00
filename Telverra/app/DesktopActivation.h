#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

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

    DesktopActivation(QObject *exported, HomeWindowViewModel &viewModel);

    /// Runs an action on the view model; false for a name that is none of them.
    static bool runAction(HomeWindowViewModel &viewModel, const QString &name);

public Q_SLOTS:
    void Activate(const QVariantMap &platformData);
    void ActivateAction(const QString &name, const QVariantList &parameter, const QVariantMap &platformData,
                        const QDBusMessage &message);
    void Open(const QStringList &uris, const QVariantMap &platformData, const QDBusMessage &message);

Q_SIGNALS:
    /// The window should come to the front.
    void raiseRequested();

private:
    HomeWindowViewModel &m_viewModel;
};
