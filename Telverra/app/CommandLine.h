#pragma once

#include <QObject>
#include <QStringList>
#include <QVariantMap>

class HomeWindowViewModel;

/// The command line: launches and listings without a window, through the same view-model operations.
namespace CommandLine {

/// True when the arguments hold a command word (call, message, mail, facetime, facetime-audio, open, meet, recents,
/// favorites, contacts, or an unknown one to report).
bool isCommand(const QStringList &arguments);

/// Runs the command: 0 on success, 1 when the launch failed (the error on standard error), 2 on a usage error.
/// A launch is forwarded to a running window when there is one, so that its history updates at once.
int run(const QStringList &arguments);

/// The usage text of `telverra --help`.
QString helpText();

} // namespace CommandLine

/// Runs one launch command on a view model and tells when it is over. The running window serves the forwarded
/// commands with it, the command line its own.
class LaunchCommand : public QObject
{
    Q_OBJECT
public:
    /// `command` is one of call, message, mail, facetime, facetime-audio, open, meet.
    LaunchCommand(HomeWindowViewModel &viewModel, const QString &command, const QString &destination,
                  QObject *parent = nullptr);
    void start();

    static bool isLaunch(const QString &command);
    /// Whether the command takes a destination.
    static bool takesDestination(const QString &command);

Q_SIGNALS:
    /// status 0 on success, 1 on failure with the error's text.
    void finished(int status, const QString &error);

private:
    HomeWindowViewModel &m_viewModel;
    QString m_command;
    QString m_destination;
    bool m_done = false;
};

/// The running window's D-Bus service: org.telverra.Telverra at /org/telverra/Telverra.
class CommandService : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.telverra.Telverra")
public:
    explicit CommandService(HomeWindowViewModel &viewModel, QObject *parent = nullptr);
    /// Registers the name and the object on the session bus; false when there is no bus or the name is taken.
    bool registerOnSessionBus();
    /// Gives the name up, for another process to take.
    void unregisterFromSessionBus();
    /// Brings a running window to the front, running a desktop action there when one is named; false when no window
    /// runs (or it did not answer). `platformData` carries the launcher's token (WindowActivation).
    static bool activateRunningWindow(const QString &action = {}, const QVariantMap &platformData = {});

public Q_SLOTS:
    /// Runs a launch command in this window; answers (status, error text) when it is over.
    Q_SCRIPTABLE int Launch(const QString &command, const QString &destination, QString &error);

Q_SIGNALS:
    /// A command came.
    void used();

private:
    HomeWindowViewModel &m_viewModel;
};
