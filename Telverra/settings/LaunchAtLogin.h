#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

/// Whether Telverra starts when the user logs in. On a desktop this is an XDG autostart entry named after the helper
/// identifier, $XDG_CONFIG_HOME/autostart/<application id>-LaunchAtLoginHelper.desktop, that starts this program;
/// inside a Flatpak sandbox it is the desktop's Background portal, asked for autostart. A failure is not reported:
/// isEnabled always tells what is read back.
class LaunchAtLogin : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool isEnabled READ isEnabled WRITE setEnabled NOTIFY isEnabledChanged)
public:
    /// For this program, in a Flatpak sandbox when /.flatpak-info exists.
    explicit LaunchAtLogin(QObject *parent = nullptr);
    /// `program` is what the entry starts; `sandboxInfoFile` marks a Flatpak sandbox when it exists.
    LaunchAtLogin(const QString &program, const QString &sandboxInfoFile, QObject *parent = nullptr);

    /// The application id followed by "-LaunchAtLoginHelper".
    static QString helperIdentifier();
    /// The user's entry: $XDG_CONFIG_HOME/autostart/<helper identifier>.desktop.
    static QString userEntry();
    /// A path as the Exec key of a desktop entry writes it: quoted when it holds a reserved character, with the
    /// quoting's and the string's escapes, and "%" doubled.
    static QString execArgument(const QString &path);

    /// Read back each time: the user's entry, else the first system one ($XDG_CONFIG_DIRS/autostart), exists, is not
    /// Hidden=true and not X-GNOME-Autostart-enabled=false. In a sandbox, what the portal last answered.
    bool isEnabled() const;
    void setEnabled(bool enabled);

Q_SIGNALS:
    void isEnabledChanged();

private Q_SLOTS:
    void portalAnswered(uint response, const QVariantMap &results);

private:
    bool inSandbox() const;
    void writeEntry(bool enabled);
    void askPortal(bool enabled);
    QString portalStateFile() const;

    QString m_program;
    QString m_sandboxInfoFile;
    bool m_portalPending = false;
};
