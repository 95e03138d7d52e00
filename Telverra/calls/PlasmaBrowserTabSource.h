#pragma once

#include "BrowserTabSource.h"

#include <QList>

/// The tabs that KDE Plasma's browser integration knows (org.kde.plasma.browser_integration, /TabsRunner, GetTabs),
/// for Chrome and Firefox alike; nothing when the service is not on the session bus.
class PlasmaBrowserTabSource : public BrowserTabSource
{
public:
    static constexpr int timeoutMilliseconds = 2000;
    std::optional<ScriptValue> run(const QString &script, bool chrome) override;
};

/// The sources asked for the browser chosen: for Chrome, Plasma's integration then the DevTools endpoint; for the
/// default browser, Plasma's integration then Firefox's session store. The first that answers is used.
class DesktopBrowserTabSource : public BrowserTabSource
{
public:
    DesktopBrowserTabSource(QList<BrowserTabSource *> chromeSources, QList<BrowserTabSource *> defaultSources);
    std::optional<ScriptValue> run(const QString &script, bool chrome) override;

private:
    QList<BrowserTabSource *> m_chromeSources;
    QList<BrowserTabSource *> m_defaultSources;
};
