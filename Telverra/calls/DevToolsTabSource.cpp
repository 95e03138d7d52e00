#include "DevToolsTabSource.h"

#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QStandardPaths>
#include <QTimer>
#include <QWebSocket>

#include <map>

namespace {

// One GET on the loopback endpoint, within the deadline and the size cap; nothing on any failure.
std::optional<QByteArray> get(QNetworkAccessManager &network, const QUrl &url, QEventLoop &loop)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    QNetworkReply *reply = network.get(request);
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [reply](qint64 received, qint64) {
        if (received > DevToolsTabSource::maximumBodySize) {
            reply->abort();
        }
    });
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    reply->deleteLater();
    if (!reply->isFinished() || reply->error() != QNetworkReply::NoError) {
        reply->abort();
        return std::nullopt;
    }
    const QByteArray body = reply->readAll();
    if (body.size() > DevToolsTabSource::maximumBodySize) {
        return std::nullopt;
    }
    return body;
}

} // namespace

DevToolsTabSource::DevToolsTabSource(quint16 port, const QStringList &profiles)
    : m_port(port)
    , m_profiles(profiles)
{}

QStringList DevToolsTabSource::defaultProfiles()
{
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return {config + u"/google-chrome", config + u"/chromium"};
}

quint16 DevToolsTabSource::activePort() const
{
    if (m_port != 0) {
        return m_port;
    }
    for (const QString &profile : m_profiles) {
        QFile file(profile + u"/DevToolsActivePort");
        if (file.size() < 1024 && file.open(QIODevice::ReadOnly)) {
            bool ok = false;
            const uint port = file.readLine().trimmed().toUInt(&ok);
            if (ok && port > 0 && port <= 65535) {
                return static_cast<quint16>(port);
            }
        }
    }
    return 0;
}

QList<DevToolsTabSource::Page> DevToolsTabSource::pages(const QByteArray &list)
{
    QList<Page> pages;
    for (const QJsonValue &target : QJsonDocument::fromJson(list).array()) {
        const QJsonObject object = target.toObject();
        if (object.value(u"type").toString() == u"page") {
            pages.append(
                {object.value(u"id").toString(), object.value(u"title").toString(), object.value(u"url").toString()});
        }
    }
    return pages;
}

std::optional<QUrl> DevToolsTabSource::browserEndpoint(const QByteArray &version)
{
    const QUrl endpoint(QJsonDocument::fromJson(version).object().value(u"webSocketDebuggerUrl").toString());
    if (endpoint.scheme() != u"ws" || endpoint.host() != u"127.0.0.1") {
        return std::nullopt; // only ever the loopback endpoint
    }
    return endpoint;
}

std::optional<ScriptValue> DevToolsTabSource::run(const QString &script, bool chrome)
{
    Q_UNUSED(script); // the endpoint answers the same question the script asks
    if (!chrome) {
        return std::nullopt;
    }
    const quint16 port = activePort();
    if (port == 0) {
        return std::nullopt;
    }
    QEventLoop loop;
    QTimer deadline;
    deadline.setSingleShot(true);
    QObject::connect(&deadline, &QTimer::timeout, &loop, &QEventLoop::quit);
    deadline.start(deadlineMilliseconds);

    QNetworkAccessManager network;
    const QString base = u"http://127.0.0.1:" + QString::number(port);
    const std::optional<QByteArray> version = get(network, QUrl(base + u"/json/version"), loop);
    const std::optional<QByteArray> list = version ? get(network, QUrl(base + u"/json/list"), loop) : std::nullopt;
    if (!list) {
        return std::nullopt;
    }
    const std::optional<QUrl> endpoint = browserEndpoint(*version);
    if (!endpoint) {
        return std::nullopt;
    }
    const QList<Page> pages = DevToolsTabSource::pages(*list);

    // The window of each page, asked over the browser's WebSocket, answers matched by request id.
    QWebSocket socket;
    socket.setMaxAllowedIncomingMessageSize(static_cast<quint64>(maximumBodySize));
    std::map<int, qint64> windowOfRequest;
    int answered = 0;
    QObject::connect(&socket, &QWebSocket::connected, &loop, [&] {
        for (qsizetype i = 0; i < pages.size(); ++i) {
            const QJsonObject request{{u"id"_qs, static_cast<int>(i + 1)},
                                      {u"method"_qs, u"Browser.getWindowForTarget"_qs},
                                      {u"params"_qs, QJsonObject{{u"targetId"_qs, pages.at(i).id}}}};
            socket.sendTextMessage(QString::fromUtf8(QJsonDocument(request).toJson(QJsonDocument::Compact)));
        }
        if (pages.isEmpty()) {
            loop.quit();
        }
    });
    QObject::connect(&socket, &QWebSocket::textMessageReceived, &loop, [&](const QString &message) {
        const QJsonObject answer = QJsonDocument::fromJson(message.toUtf8()).object();
        const int id = answer.value(u"id").toInt();
        if (id >= 1 && id <= pages.size() && !windowOfRequest.contains(id)) {
            windowOfRequest[id] = answer.value(u"result").toObject().value(u"windowId").toInteger(-1);
            if (++answered == pages.size()) {
                loop.quit();
            }
        }
    });
    QObject::connect(&socket, &QWebSocket::disconnected, &loop, &QEventLoop::quit);
    socket.open(*endpoint);
    if (deadline.isActive()) {
        loop.exec();
    }
    socket.abort();
    if (answered != pages.size()) {
        return std::nullopt;
    }

    // Windows in the order their first page is listed; tabs in list order.
    QList<qint64> windowOrder;
    std::map<qint64, QList<ScriptValue>> tabsOfWindow;
    for (qsizetype i = 0; i < pages.size(); ++i) {
        const qint64 window = windowOfRequest[static_cast<int>(i + 1)];
        if (!tabsOfWindow.contains(window)) {
            windowOrder.append(window);
        }
        tabsOfWindow[window].append(ScriptValue::fromList({ScriptValue::fromText(u"Title: " + pages.at(i).title),
                                                           ScriptValue::fromText(u"URL: " + pages.at(i).url)}));
    }
    QList<ScriptValue> windows;
    for (qint64 window : std::as_const(windowOrder)) {
        windows.append(ScriptValue::fromList({ScriptValue::fromText(u"Window ID: " + QString::number(window)),
                                              ScriptValue::fromList(tabsOfWindow[window])}));
    }
    return ScriptValue::fromList(windows);
}
