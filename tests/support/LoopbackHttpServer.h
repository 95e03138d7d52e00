#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>
#include <QTcpServer>

#include <functional>

/// A small HTTP/1.1 server on 127.0.0.1 for tests: answers each path with the status, type and body given, and
/// records the request lines it received.
class LoopbackHttpServer : public QObject
{
    Q_OBJECT
public:
    explicit LoopbackHttpServer(QObject *parent = nullptr);

    bool listen();
    bool isListening() const { return m_server.isListening(); }
    quint16 port() const { return m_server.serverPort(); }
    QString baseUrl() const { return u"http://127.0.0.1:" + QString::number(port()); }

    using Headers = QList<QPair<QByteArray, QByteArray>>;
    /// An answer worked out from the request's headers (names in lower case).
    struct Answer
    {
        int status = 200;
        QByteArray contentType = "application/json";
        QByteArray body;
        Headers headers = {};
    };
    using Handler = std::function<Answer(const QHash<QByteArray, QByteArray> &requestHeaders)>;

    void setResponse(const QString &path, int status, const QByteArray &contentType, const QByteArray &body,
                     const Headers &headers = {});
    /// Answers the path with what the handler makes of each request.
    void setHandler(const QString &path, Handler handler);
    /// Answers the path with the body one byte per interval.
    void setTrickle(const QString &path, const QByteArray &body, int intervalMs);
    /// Answers the path with `size` bytes of "x", written in pieces as the client reads them; with or without a
    /// Content-Length header.
    void setEndless(const QString &path, qint64 size, bool announceLength);
    /// Bytes written for streamed answers so far.
    qint64 bytesStreamed() const { return m_bytesStreamed; }
    /// "GET /path?query" per request, in order.
    QStringList requests() const { return m_requests; }
    /// A header of each request, in order (a null array where a request had none).
    QList<QByteArray> requestHeader(const QByteArray &name) const;

private:
    struct Response
    {
        int status = 404;
        QByteArray contentType;
        QByteArray body;
        int trickleMs = 0;
        qint64 streamSize = -1;
        bool announceLength = true;
        Headers headers = {};
        Handler handler = {};
    };
    void stream(QTcpSocket *socket, qint64 remaining);
    void serve(QTcpSocket *socket);

    QTcpServer m_server;
    QHash<QString, Response> m_responses;
    QStringList m_requests;
    QList<QHash<QByteArray, QByteArray>> m_requestHeaders;
    qint64 m_bytesStreamed = 0;
};
