// SPDX-License-Identifier: GPL-3.0-or-later
#include "httpservice.h"

#include <QTcpSocket>

namespace {

constexpr int LongestRequest = 64 * 1024;

QByteArray reason(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 409:
        return "Conflict";
    }
    return "Internal Server Error";
}

/** The value of a header, its name in lower case; empty when it is missing. */
QByteArray header(const QByteArray &head, const QByteArray &name)
{
    const QList<QByteArray> lines = head.split('\n');
    for (const QByteArray &line : lines) {
        const int colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).trimmed().toLower() == name)
            return line.mid(colon + 1).trimmed();
    }
    return QByteArray();
}

} // namespace

HttpService::HttpService(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &HttpService::accept);
}

HttpService::~HttpService()
{
    // The sockets go after the buffers and must not report to them any more.
    for (auto it = m_buffers.keyBegin(); it != m_buffers.keyEnd(); ++it)
        (*it)->disconnect(this);
}

bool HttpService::listen(quint16 port)
{
    return m_server.listen(QHostAddress::LocalHost, port);
}

void HttpService::respond(
    QTcpSocket *socket, int status, const QByteArray &contentType, const QByteArray &body)
{
    socket->write("HTTP/1.1 " + QByteArray::number(status) + ' ' + reason(status)
        + "\r\nContent-Type: " + contentType
        + "\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" + body);
}

void HttpService::accept()
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

void HttpService::receive(QTcpSocket *socket)
{
    m_buffers[socket] += socket->readAll();
    while (m_buffers.contains(socket)) { // an answer may close the connection
        QByteArray &buffer = m_buffers[socket];
        const int headEnd = buffer.indexOf("\r\n\r\n");
        const QByteArray head = buffer.left(headEnd);
        const int bodyLength = header(head, "content-length").toInt();
        if (buffer.size() > LongestRequest || bodyLength < 0 || bodyLength > LongestRequest) {
            socket->abort();
            return;
        }
        if (headEnd < 0 || buffer.size() < headEnd + 4 + bodyLength)
            return;
        buffer.remove(0, headEnd + 4 + bodyLength);
        const QList<QByteArray> words = head.split('\r').first().split(' ');
        answer(words.value(0), words.value(1), socket);
    }
}
