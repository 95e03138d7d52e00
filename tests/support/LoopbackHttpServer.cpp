#include "LoopbackHttpServer.h"

#include <QTcpSocket>

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
                                     const QByteArray &body)
{
    m_responses.insert(path, {status, contentType, body});
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
    const QString path = target.left(target.indexOf(u'?') < 0 ? target.size() : target.indexOf(u'?'));
    const Response response = m_responses.value(path);
    socket->write("HTTP/1.1 " + QByteArray::number(response.status) + " Answer\r\nContent-Type: " +
                  response.contentType + "\r\nContent-Length: " + QByteArray::number(response.body.size()) +
                  "\r\nConnection: close\r\n\r\n" + response.body);
    socket->disconnectFromHost();
}
