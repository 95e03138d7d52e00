#pragma once

#include <QByteArray>
#include <QHash>
#include <QStringList>
#include <QTcpServer>

/// A small HTTP/1.1 server on 127.0.0.1 for tests: answers each path with the status, type and body given, and
/// records the request lines it received.
class LoopbackHttpServer : public QObject
{
    Q_OBJECT
public:
    explicit LoopbackHttpServer(QObject *parent = nullptr);

    bool listen();
    quint16 port() const { return m_server.serverPort(); }
    QString baseUrl() const { return u"http://127.0.0.1:" + QString::number(port()); }

    void setResponse(const QString &path, int status, const QByteArray &contentType, const QByteArray &body);
    /// "GET /path?query" per request, in order.
    QStringList requests() const { return m_requests; }

private:
    struct Response
    {
        int status = 404;
        QByteArray contentType;
        QByteArray body;
    };
    void serve(QTcpSocket *socket);

    QTcpServer m_server;
    QHash<QString, Response> m_responses;
    QStringList m_requests;
};
