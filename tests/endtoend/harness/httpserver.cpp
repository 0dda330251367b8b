// SPDX-License-Identifier: GPL-3.0-or-later
#include "httpserver.h"

#include <QTcpSocket>

HttpServer::HttpServer(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &HttpServer::accept);
}

bool HttpServer::listen(quint16 port)
{
    if (m_server.listen(QHostAddress::LocalHost, port))
        return true;
    qWarning("cannot listen on port %d: %s", port, qUtf8Printable(m_server.errorString()));
    return false;
}

void HttpServer::send(
    QTcpSocket *socket, int status, const QByteArray &contentType, const QByteArray &body)
{
    socket->write("HTTP/1.1 " + QByteArray::number(status) + (status == 200 ? " OK" : " Trouble")
        + "\r\nContent-Type: " + contentType
        + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

void HttpServer::accept()
{
    while (QTcpSocket *const socket = m_server.nextPendingConnection()) {
        m_buffers.insert(socket, QByteArray());
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { receive(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_buffers.remove(socket);
            socket->deleteLater();
        });
    }
}

void HttpServer::receive(QTcpSocket *socket)
{
    m_buffers[socket] += socket->readAll();
    while (m_buffers.contains(socket)) { // an answer may close the connection
        QByteArray &buffer = m_buffers[socket];
        const int headEnd = buffer.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        QList<QByteArray> head = buffer.left(headEnd).replace("\r\n", "\n").split('\n');
        Request request;
        request.line = head.takeFirst();
        request.method = request.line.split(' ').value(0);
        request.target = request.line.split(' ').value(1);
        for (const QByteArray &header : qAsConst(head)) {
            const int colon = header.indexOf(':');
            request.headers.insert(header.left(colon).toLower(), header.mid(colon + 1).trimmed());
        }
        const int bodyLength = request.headers.value("content-length").toInt();
        if (buffer.size() < headEnd + 4 + bodyLength)
            return;
        request.body = buffer.mid(headEnd + 4, bodyLength);
        buffer.remove(0, headEnd + 4 + bodyLength);
        m_requests.append(request);
        answer(request, socket);
    }
}
