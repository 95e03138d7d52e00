#include "DeploymentSettings.h"

#include <QCoreApplication>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>

#include <mutex>

namespace {
QString &sharedFile()
{
    static QString file;
    return file;
}
} // namespace

QString DeploymentSettings::defaultFile()
{
    if (QCoreApplication::instance()) {
        const QString besideExecutable = QCoreApplication::applicationDirPath() + u"/../share/telverra/Info.ini";
        if (QFile::exists(besideExecutable)) {
            return besideExecutable;
        }
    }
    return QStandardPaths::locate(QStandardPaths::GenericDataLocation, QStringLiteral("telverra/Info.ini"));
}

DeploymentSettings::DeploymentSettings(const QString &file)
    : m_file(file)
{}

const DeploymentSettings &DeploymentSettings::shared()
{
    static std::once_flag once;
    static DeploymentSettings *instance = nullptr;
    std::call_once(once,
                   [] { instance = new DeploymentSettings(sharedFile().isEmpty() ? defaultFile() : sharedFile()); });
    return *instance;
}

void DeploymentSettings::setSharedFile(const QString &file)
{
    sharedFile() = file;
}

std::optional<QString> DeploymentSettings::value(const QString &key) const
{
    if (m_file.isEmpty() || !QFile::exists(m_file)) {
        return std::nullopt;
    }
    const QSettings settings(m_file, QSettings::IniFormat);
    if (!settings.contains(key)) {
        return std::nullopt;
    }
    return settings.value(key).toString();
}

QString DeploymentSettings::baseUrl(const QString &key, const QString &fallback) const
{
    QString base = value(key).value_or(fallback);
    while (base.endsWith(u'/')) {
        base.chop(1);
    }
    return base;
}
