#pragma once

#include "BrowserTabSource.h"

#include <QByteArray>
#include <QStringList>

/// The default browser's tabs from Firefox's session store: the default profile named in profiles.ini, its
/// sessionstore-backups/recovery.jsonlz4 ("mozLz40\0", the decompressed size, an LZ4 block). The size in the header
/// is checked against a cap before anything is allocated, and the block must decompress to exactly that size.
class FirefoxSessionTabSource : public BrowserTabSource
{
public:
    static constexpr qint64 maximumSessionSize = 256 * 1024 * 1024;

    /// `roots`: folders that hold a profiles.ini (~/.mozilla/firefox and the Flatpak and Snap places by default).
    explicit FirefoxSessionTabSource(const QStringList &roots = defaultRoots());
    static QStringList defaultRoots();

    /// The JSON inside a mozlz4 file, or nothing when the file is not one, is truncated or its header lies.
    static std::optional<QByteArray> decompressMozLz4(const QByteArray &file);
    /// The windows and tabs of a session document (each tab's current page), as the listing script gives them.
    static ScriptValue windowsFromSession(const QByteArray &json);

    std::optional<ScriptValue> run(const QString &script, bool chrome) override;

private:
    QString defaultProfile() const;

    QStringList m_roots;
};
