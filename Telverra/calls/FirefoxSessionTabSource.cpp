#include "FirefoxSessionTabSource.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>

#include <lz4.h>

#include <cstring>

FirefoxSessionTabSource::FirefoxSessionTabSource(const QStringList &roots)
    : m_roots(roots)
{}

QStringList FirefoxSessionTabSource::defaultRoots()
{
    const QString home = QDir::homePath();
    return {home + u"/.mozilla/firefox", home + u"/.var/app/org.mozilla.firefox/.mozilla/firefox",
            home + u"/snap/firefox/common/.mozilla/firefox"};
}

std::optional<QByteArray> FirefoxSessionTabSource::decompressMozLz4(const QByteArray &file)
{
    static constexpr char magic[] = "mozLz40"; // and its terminating NUL: 8 bytes
    if (file.size() < 12 || std::memcmp(file.constData(), magic, 8) != 0) {
        return std::nullopt;
    }
    const auto *header = reinterpret_cast<const unsigned char *>(file.constData() + 8);
    const quint32 size =
        quint32(header[0]) | quint32(header[1]) << 8 | quint32(header[2]) << 16 | quint32(header[3]) << 24;
    if (size == 0 || size > maximumSessionSize) {
        return std::nullopt;
    }
    QByteArray json(static_cast<qsizetype>(size), Qt::Uninitialized);
    const int written = LZ4_decompress_safe(file.constData() + 12, json.data(), static_cast<int>(file.size() - 12),
                                            static_cast<int>(size));
    if (written != static_cast<int>(size)) {
        return std::nullopt;
    }
    return json;
}

QString FirefoxSessionTabSource::defaultProfile() const
{
    for (const QString &root : m_roots) {
        const QString ini = root + u"/profiles.ini";
        if (!QFile::exists(ini)) {
            continue;
        }
        QSettings profiles(ini, QSettings::IniFormat);
        QString chosen;
        // The profile of the installed Firefox, else the one marked default, else the first.
        for (const QString &group : profiles.childGroups()) {
            if (group.startsWith(u"Install")) {
                chosen = root + u'/' + profiles.value(group + u"/Default").toString();
                break;
            }
        }
        if (chosen.isEmpty()) {
            QString first;
            for (const QString &group : profiles.childGroups()) {
                if (!group.startsWith(u"Profile")) {
                    continue;
                }
                const QString path = profiles.value(group + u"/Path").toString();
                const QString full = profiles.value(group + u"/IsRelative", 1).toInt() == 1 ? root + u'/' + path : path;
                if (first.isEmpty()) {
                    first = full;
                }
                if (profiles.value(group + u"/Default").toInt() == 1) {
                    chosen = full;
                }
            }
            if (chosen.isEmpty()) {
                chosen = first;
            }
        }
        if (!chosen.isEmpty()) {
            return QDir::cleanPath(chosen);
        }
    }
    return {};
}

std::optional<ScriptValue> FirefoxSessionTabSource::run(const QString &script, bool chrome)
{
    Q_UNUSED(script);
    if (chrome) {
        return std::nullopt;
    }
    const QString profile = defaultProfile();
    if (profile.isEmpty()) {
        return std::nullopt;
    }
    QFile session(profile + u"/sessionstore-backups/recovery.jsonlz4");
    if (!session.open(QIODevice::ReadOnly) || session.size() > maximumSessionSize) {
        return std::nullopt;
    }
    const std::optional<QByteArray> json = decompressMozLz4(session.readAll());
    if (!json) {
        return std::nullopt;
    }
    return windowsFromSession(*json);
}

ScriptValue FirefoxSessionTabSource::windowsFromSession(const QByteArray &json)
{
    QList<ScriptValue> windows;
    int windowNumber = 0;
    for (const QJsonValue &window : QJsonDocument::fromJson(json).object().value(u"windows").toArray()) {
        QList<ScriptValue> tabs;
        for (const QJsonValue &tab : window.toObject().value(u"tabs").toArray()) {
            // A tab's history; "index" (1-based) is the page it shows now.
            const QJsonArray entries = tab.toObject().value(u"entries").toArray();
            const int index = tab.toObject().value(u"index").toInt(static_cast<int>(entries.size()));
            const QJsonObject entry = entries.at(std::clamp(index, 1, std::max<int>(1, entries.size())) - 1).toObject();
            tabs.append(ScriptValue::fromList({ScriptValue::fromText(u"Title: " + entry.value(u"title").toString()),
                                               ScriptValue::fromText(u"URL: " + entry.value(u"url").toString())}));
        }
        windows.append(ScriptValue::fromList(
            {ScriptValue::fromText(u"Window ID: " + QString::number(++windowNumber)), ScriptValue::fromList(tabs)}));
    }
    return ScriptValue::fromList(windows);
}
