#include "PlasmaBrowserTabSource.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QVariantMap>

#include <map>

std::optional<ScriptValue> PlasmaBrowserTabSource::run(const QString &script, bool chrome)
{
    Q_UNUSED(script);
    Q_UNUSED(chrome); // the integration serves whichever browser has its extension
    const QString service = QStringLiteral("org.kde.plasma.browser_integration");
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface() || !bus.interface()->isServiceRegistered(service)) {
        return std::nullopt;
    }
    const QDBusMessage call = QDBusMessage::createMethodCall(
        service, QStringLiteral("/TabsRunner"), QStringLiteral("org.kde.plasma.browser_integration.TabsRunner"),
        QStringLiteral("GetTabs"));
    const QDBusMessage reply = bus.call(call, QDBus::Block, timeoutMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return std::nullopt;
    }
    QList<QVariantMap> tabs;
    const QVariant first = reply.arguments().constFirst();
    if (first.canConvert<QDBusArgument>()) {
        first.value<QDBusArgument>() >> tabs;
    } else {
        return std::nullopt;
    }
    QList<qint64> windowOrder;
    std::map<qint64, QList<ScriptValue>> tabsOfWindow;
    for (const QVariantMap &tab : std::as_const(tabs)) {
        const qint64 window = tab.value(u"windowId"_qs).toLongLong();
        if (!tabsOfWindow.contains(window)) {
            windowOrder.append(window);
        }
        tabsOfWindow[window].append(
            ScriptValue::fromList({ScriptValue::fromText(u"Title: " + tab.value(u"title"_qs).toString()),
                                   ScriptValue::fromText(u"URL: " + tab.value(u"url"_qs).toString())}));
    }
    QList<ScriptValue> windows;
    for (qint64 window : std::as_const(windowOrder)) {
        windows.append(ScriptValue::fromList({ScriptValue::fromText(u"Window ID: " + QString::number(window)),
                                              ScriptValue::fromList(tabsOfWindow[window])}));
    }
    return ScriptValue::fromList(windows);
}

DesktopBrowserTabSource::DesktopBrowserTabSource(QList<BrowserTabSource *> chromeSources,
                                                 QList<BrowserTabSource *> defaultSources)
    : m_chromeSources(std::move(chromeSources))
    , m_defaultSources(std::move(defaultSources))
{}

std::optional<ScriptValue> DesktopBrowserTabSource::run(const QString &script, bool chrome)
{
    for (BrowserTabSource *source : chrome ? m_chromeSources : m_defaultSources) {
        if (std::optional<ScriptValue> answer = source->run(script, chrome)) {
            return answer;
        }
    }
    return std::nullopt;
}
