#include "LaunchAtLogin.h"

#include "common/ApplicationId.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QStandardPaths>

namespace {

const QString entryGroup = QStringLiteral("[Desktop Entry]");

// The string escapes of a desktop entry value.
QString escapedString(const QString &value)
{
    QString escaped;
    for (QChar c : value) {
        switch (c.unicode()) {
        case u'\\':
            escaped += u"\\\\";
            break;
        case u'\n':
            escaped += u"\\n";
            break;
        case u'\t':
            escaped += u"\\t";
            break;
        case u'\r':
            escaped += u"\\r";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

// The keys of an entry's [Desktop Entry] group (values unescaped only as far as booleans need).
QHash<QString, QString> entryKeys(const QString &file)
{
    QHash<QString, QString> keys;
    QFile entry(file);
    if (!entry.open(QIODevice::ReadOnly | QIODevice::Text) || entry.size() > 64 * 1024) {
        return keys;
    }
    bool inEntry = false;
    for (const QByteArray &raw : entry.readAll().split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith(u'[')) {
            inEntry = line == entryGroup;
            continue;
        }
        const qsizetype equals = line.indexOf(u'=');
        if (inEntry && equals > 0 && !line.startsWith(u'#')) {
            keys.insert(line.first(equals).trimmed(), line.sliced(equals + 1).trimmed());
        }
    }
    return keys;
}

bool isTrue(const QString &value)
{
    return value.compare(u"true", Qt::CaseInsensitive) == 0;
}

QString configHome()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
}

// $XDG_CONFIG_DIRS, in order of precedence (default /etc/xdg).
QStringList systemConfigDirs()
{
    const QString dirs = qEnvironmentVariable("XDG_CONFIG_DIRS");
    QStringList found;
    for (const QString &dir : (dirs.isEmpty() ? QStringLiteral("/etc/xdg") : dirs).split(u':', Qt::SkipEmptyParts)) {
        found.append(dir);
    }
    return found;
}

QString systemEntry()
{
    for (const QString &dir : systemConfigDirs()) {
        const QString file = dir + u"/autostart/" + LaunchAtLogin::helperIdentifier() + u".desktop";
        if (QFileInfo::exists(file)) {
            return file;
        }
    }
    return {};
}

} // namespace

LaunchAtLogin::LaunchAtLogin(QObject *parent)
    : LaunchAtLogin(QCoreApplication::applicationFilePath(), QStringLiteral("/.flatpak-info"), parent)
{}

LaunchAtLogin::LaunchAtLogin(const QString &program, const QString &sandboxInfoFile, QObject *parent)
    : QObject(parent)
    , m_program(program)
    , m_sandboxInfoFile(sandboxInfoFile)
{}

QString LaunchAtLogin::helperIdentifier()
{
    return QString::fromLatin1(applicationId) + u"-LaunchAtLoginHelper";
}

QString LaunchAtLogin::userEntry()
{
    return configHome() + u"/autostart/" + helperIdentifier() + u".desktop";
}

QString LaunchAtLogin::execArgument(const QString &path)
{
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    bool quote = false;
    for (QChar c : path) {
        quote = quote || reserved.contains(c);
    }
    QString argument = path;
    if (quote) {
        // Inside double quotes, ", `, $ and \ take a backslash.
        argument.clear();
        for (QChar c : path) {
            if (c == u'"' || c == u'`' || c == u'$' || c == u'\\') {
                argument += u'\\';
            }
            argument += c;
        }
        argument = u'"' + argument + u'"';
    }
    argument.replace(u'%', u"%%"_qs);
    return escapedString(argument);
}

bool LaunchAtLogin::inSandbox() const
{
    return !m_sandboxInfoFile.isEmpty() && QFileInfo::exists(m_sandboxInfoFile);
}

bool LaunchAtLogin::isEnabled() const
{
    if (inSandbox()) {
        QFile state(portalStateFile());
        return state.open(QIODevice::ReadOnly) && state.read(1) == "1";
    }
    const QString entry = QFileInfo::exists(userEntry()) ? userEntry() : systemEntry();
    if (entry.isEmpty()) {
        return false;
    }
    const QHash<QString, QString> keys = entryKeys(entry);
    const auto enabled = keys.constFind(QStringLiteral("X-GNOME-Autostart-enabled"));
    return !isTrue(keys.value(QStringLiteral("Hidden"))) &&
           (enabled == keys.cend() || enabled->compare(u"false", Qt::CaseInsensitive) != 0);
}

void LaunchAtLogin::setEnabled(bool enabled)
{
    if (inSandbox()) {
        askPortal(enabled);
    } else {
        writeEntry(enabled);
    }
    Q_EMIT isEnabledChanged();
}

void LaunchAtLogin::writeEntry(bool enabled)
{
    const QString file = userEntry();
    if (!enabled && systemEntry().isEmpty()) {
        QFile::remove(file);
        return;
    }
    QDir().mkpath(QFileInfo(file).absolutePath());
    QSaveFile entry(file);
    if (!entry.open(QIODevice::WriteOnly | QIODevice::Text)) {
        return;
    }
    QString text = entryGroup + u"\nType=Application\nName=Telverra\n";
    if (enabled) {
        text += u"Comment=Starts Telverra when you log in\nExec=" + execArgument(m_program) + u"\nTryExec=" +
                escapedString(m_program) + u"\nIcon=" + QString::fromLatin1(applicationId) +
                u"\nTerminal=false\nX-GNOME-Autostart-enabled=true\n";
    } else {
        // A system entry of the same name starts the program for every user: this one masks it.
        text += u"Hidden=true\n";
    }
    entry.write(text.toUtf8());
    entry.commit();
}

QString LaunchAtLogin::portalStateFile() const
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/telverra/launch-at-login";
}

void LaunchAtLogin::askPortal(bool enabled)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || m_portalPending) {
        return;
    }
    // The request's object path is known before the call, so its Response is subscribed to first: a fast answer is
    // not lost.
    const QString token = u"telverra" + QString::number(QRandomGenerator::global()->generate());
    QString sender = bus.baseService().sliced(1);
    sender.replace(u'.', u'_');
    const QString requestPath = u"/org/freedesktop/portal/desktop/request/" + sender + u'/' + token;
    bus.connect(QStringLiteral("org.freedesktop.portal.Desktop"), requestPath,
                QStringLiteral("org.freedesktop.portal.Request"), QStringLiteral("Response"), this,
                SLOT(portalAnswered(uint, QVariantMap)));
    QDBusMessage request = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Background"), QStringLiteral("RequestBackground"));
    request << QString() // no parent window
            << QVariantMap{{QStringLiteral("handle_token"), token},
                           {QStringLiteral("reason"), tr("Start Telverra when you log in")},
                           {QStringLiteral("autostart"), enabled},
                           {QStringLiteral("commandline"), QStringList{QFileInfo(m_program).fileName()}},
                           {QStringLiteral("dbus-activatable"), false}};
    m_portalPending = true;
    auto *call = new QDBusPendingCallWatcher(bus.asyncCall(request), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        call->deleteLater();
        if (call->isError()) {
            m_portalPending = false; // no portal: nothing changes
        }
    });
}

void LaunchAtLogin::portalAnswered(uint response, const QVariantMap &results)
{
    m_portalPending = false;
    if (response == 0) {
        const QString file = portalStateFile();
        QDir().mkpath(QFileInfo(file).absolutePath());
        QSaveFile state(file);
        if (state.open(QIODevice::WriteOnly)) {
            state.write(results.value(QStringLiteral("autostart")).toBool() ? "1" : "0");
            state.commit();
        }
    }
    Q_EMIT isEnabledChanged();
}
