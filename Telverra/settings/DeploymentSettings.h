#pragma once

#include <QString>

#include <optional>

/// What is deployed with the application in Info.ini (the weather service key, service addresses, the Chrome
/// executable and DevTools port). Never compiled in and never read from the environment.
class DeploymentSettings
{
public:
    /// Info.ini next to the executable (../share/telverra/Info.ini), else telverra/Info.ini in the XDG data dirs.
    static QString defaultFile();

    /// The settings of the file (an absent file gives no values).
    explicit DeploymentSettings(const QString &file);

    /// The process's settings: the file given to setSharedFile() (--info FILE) before first use, else defaultFile().
    static const DeploymentSettings &shared();
    static void setSharedFile(const QString &file);

    const QString &file() const { return m_file; }
    /// The value under the key, or nothing when the file has none (an empty value counts as a value).
    std::optional<QString> value(const QString &key) const;
    /// A service's base address under the key (the fallback when absent), without trailing slashes.
    QString baseUrl(const QString &key, const QString &fallback = QString()) const;

private:
    QString m_file;
};
