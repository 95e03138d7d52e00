#include "LoopbackHttpServer.h"

#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

LoopbackHttpServer::LoopbackHttpServer(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
}

bool LoopbackHttpServer::listen()
{
    return m_server.listen(QHostAddress::LocalHost);
}

void LoopbackHttpServer::setResponse(const QString &path, int status, const QByteArray &contentType,
                                     const QByteArray &body, const Headers &headers)
{
    Response response{status, contentType, body};
    response.headers = headers;
    m_responses.insert(path, response);
}

void LoopbackHttpServer::setHandler(const QString &path, Handler handler)
{
    Response response;
    response.handler = std::move(handler);
    m_responses.insert(path, response);
}

QList<QByteArray> LoopbackHttpServer::requestHeader(const QByteArray &name) const
{
    QList<QByteArray> values;
    for (const auto &headers : m_requestHeaders) {
        values.append(headers.value(name.toLower()));
    }
    return values;
}

void LoopbackHttpServer::setTrickle(const QString &path, const QByteArray &body, int intervalMs)
{
    Response response{200, "application/json", body};
    response.trickleMs = intervalMs;
    m_responses.insert(path, response);
}

void LoopbackHttpServer::setEndless(const QString &path, qint64 size, bool announceLength)
{
    Response response{200, "application/json", {}};
    response.streamSize = size;
    response.announceLength = announceLength;
    m_responses.insert(path, response);
}

void LoopbackHttpServer::stream(QTcpSocket *socket, qint64 remaining)
{
    static const QByteArray piece(64 * 1024, 'x');
    // Keep a little ahead of the reader rather than buffering the whole body.
    while (remaining > 0 && socket->bytesToWrite() < 4 * piece.size()) {
        const qint64 size = std::min<qint64>(remaining, piece.size());
        socket->write(piece.constData(), size);
        remaining -= size;
        m_bytesStreamed += size;
    }
    if (remaining == 0) {
        socket->disconnectFromHost();
        return;
    }
    QPointer<QTcpSocket> guard(socket);
    QTimer::singleShot(1, this, [this, guard, remaining] {
        if (guard && guard->state() == QAbstractSocket::ConnectedState) {
            stream(guard, remaining);
        }
    });
}

void LoopbackHttpServer::serve(QTcpSocket *socket)
{
    QByteArray request = socket->property("request").toByteArray() + socket->readAll();
    socket->setProperty("request", request);
    if (!request.contains("\r\n\r\n")) {
        return; // the headers are not complete yet
    }
    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    const QString target = QString::fromLatin1(requestLine.value(1));
    m_requests.append(QString::fromLatin1(requestLine.value(0)) + u' ' + target);
    QHash<QByteArray, QByteArray> headers;
    for (const QByteArray &line : request.left(request.indexOf("\r\n\r\n")).split('\n').mid(1)) {
        const qsizetype colon = line.indexOf(':');
        if (colon > 0) {
            headers.insert(line.left(colon).trimmed().toLower(), line.mid(colon + 1).trimmed());
        }
    }
    m_requestHeaders.append(headers);
    const QString path = target.left(target.indexOf(u'?') < 0 ? target.size() : target.indexOf(u'?'));
    Response response = m_responses.value(path);
    if (response.handler) {
        const Answer answer = response.handler(headers);
        response = Response{answer.status, answer.contentType, answer.body};
        response.headers = answer.headers;
    }
    socket->disconnect(this); // one request per connection
    if (response.streamSize >= 0) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n" +
                      (response.announceLength ? "Content-Length: " + QByteArray::number(response.streamSize) + "\r\n"
                                               : QByteArray()) +
                      "Connection: close\r\n\r\n");
        stream(socket, response.streamSize);
        return;
    }
    if (response.trickleMs > 0) {
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " +
                      QByteArray::number(response.body.size()) + "\r\nConnection: close\r\n\r\n");
        auto *timer = new QTimer(socket);
        auto sent = std::make_shared<qsizetype>(0);
        connect(timer, &QTimer::timeout, socket, [socket, timer, sent, body = response.body] {
            if (*sent >= body.size()) {
                timer->stop();
                socket->disconnectFromHost();
                return;
            }
            socket->write(body.mid((*sent)++, 1));
        });
        timer->start(response.trickleMs);
        return;
    }
    QByteArray extra;
    for (const auto &[name, value] : response.headers) {
        extra += name + ": " + value + "\r\n";
    }
    socket->write("HTTP/1.1 " + QByteArray::number(response.status) + " Answer\r\nContent-Type: " +
                  response.contentType + "\r\nContent-Length: " + QByteArray::number(response.body.size()) + "\r\n" +
                  extra + "Connection: close\r\n\r\n" + response.body);
    socket->disconnectFromHost();
}
