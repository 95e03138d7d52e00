#pragma once

#include <QUrl>

#include "BrowserTabSource.h"

#include <QStringList>

/// Chrome's or Chromium's tabs through the DevTools endpoint on 127.0.0.1: the port comes from the setting, else from
/// the DevToolsActivePort file that a browser started with remote debugging writes in its profile. Pages only, grouped
/// by window (Browser.getWindowForTarget over the browser's WebSocket). Bodies are capped at 4 MiB and the whole
/// exchange has a deadline.
class DevToolsTabSource : public BrowserTabSource
{
public:
    static constexpr qint64 maximumBodySize = 4 * 1024 * 1024;
    static constexpr int deadlineMilliseconds = 3000;

    /// `port` 0: read DevToolsActivePort from the profiles (the Chrome and Chromium profiles by default).
    explicit DevToolsTabSource(quint16 port = 0, const QStringList &profiles = defaultProfiles());

    /// ~/.config/google-chrome and ~/.config/chromium.
    static QStringList defaultProfiles();

    std::optional<ScriptValue> run(const QString &script, bool chrome) override;

    /// A page of the browser as /json/list describes it.
    struct Page
    {
        QString id;
        QString title;
        QString url;
    };
    /// The pages of a /json/list answer, in its order (other targets, such as workers, are left out).
    static QList<Page> pages(const QByteArray &list);
    /// The browser's WebSocket endpoint from a /json/version answer; only ever one on 127.0.0.1.
    static std::optional<QUrl> browserEndpoint(const QByteArray &version);

private:
    quint16 activePort() const;

    quint16 m_port;
    QStringList m_profiles;
};
