// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/http/httpserver.h"

#include <QTcpSocket>

namespace {

constexpr int LongestRequest = 64 * 1024; // bytes, head and body
const QByteArray HeadEnd = "\r\n\r\n";

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

/** What precedes a body. */
QByteArray head(int status, const QByteArray &contentType, int length)
{
    return "HTTP/1.1 " + QByteArray::number(status) + ' ' + reason(status) + "\r\nContent-Type: "
        + contentType + "\r\nContent-Length: " + QByteArray::number(length) + HeadEnd;
}

/** Reads all but the body. False when the head is not one of a request. */
bool readHead(const QByteArray &head, HttpServer::Request *request)
{
    QList<QByteArray> lines = head.split('\n');
    request->line = lines.takeFirst().trimmed();
    const QList<QByteArray> words = request->line.split(' ');
    if (words.size() != 3 || words.at(1).isEmpty() || !words.at(2).startsWith("HTTP/1."))
        return false;
    request->method = words.at(0);
    request->target = words.at(1);
    for (const QByteArray &line : qAsConst(lines)) {
        const int colon = line.indexOf(':');
        if (colon <= 0)
            return false;
        request->headers.insert(line.left(colon).toLower(), line.mid(colon + 1).trimmed());
    }
    return true;
}

/** The length of the body; negative when it cannot be told from the headers. */
qint64 bodyLength(const HttpServer::Request &request)
{
    if (request.headers.contains("transfer-encoding"))
        return -1;
    const auto length = request.headers.constFind("content-length");
    if (length == request.headers.constEnd())
        return 0;
    bool isNumber = false;
    const qint64 value = length->toLongLong(&isNumber);
    return isNumber ? value : -1;
}

bool wantsToLeave(const HttpServer::Request &request)
{
    const QByteArray wish = request.headers.value("connection").toLower();
    return wish == "close" || (request.line.endsWith("HTTP/1.0") && wish != "keep-alive");
}

} // namespace

HttpServer::HttpServer(QObject *parent)
    : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, &HttpServer::accept);
}

bool HttpServer::listen(quint16 port)
{
    return m_server.listen(QHostAddress::LocalHost, port);
}

void HttpServer::respond(
    QTcpSocket *socket, int status, const QByteArray &contentType, const QByteArray &body)
{
    const auto connection = m_connections.find(socket);
    if (connection == m_connections.end() || !connection->isAsked)
        return;
    socket->write(head(status, contentType, body.size()));
    if (connection->wantsBody)
        socket->write(body);
    connection->isAsked = false;
    if (connection->isLast)
        close(socket);
}

/** Once all is written; nothing more is read until then. */
void HttpServer::close(QTcpSocket *socket)
{
    m_connections.remove(socket);
    socket->disconnectFromHost();
}

void HttpServer::accept()
{
    while (QTcpSocket *const socket = m_server.nextPendingConnection()) {
        m_connections.insert(socket, {});
        // What has not been looked at yet stays in the socket; what exceeds that, with the client.
        socket->setReadBufferSize(LongestRequest);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { receive(socket); });
        connect(socket, &QTcpSocket::bytesWritten, this, [this, socket] { receive(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_connections.remove(socket);
            socket->deleteLater();
        });
    }
}

void HttpServer::receive(QTcpSocket *socket)
{
    const auto connection = m_connections.find(socket);
    if (connection == m_connections.end() || connection->isAsked)
        return;
    if (socket->bytesToWrite() > 0) // else answers would pile up for a client that does not read
        return;
    const QByteArray received = socket->peek(LongestRequest);
    const int headLength = received.indexOf(HeadEnd);
    if (headLength < 0) {
        if (received.size() == LongestRequest)
            socket->abort();
        return;
    }
    Request request;
    const bool isRequest = readHead(received.left(headLength), &request);
    const qint64 length = bodyLength(request);
    if (!isRequest || length < 0) {
        const QByteArray body = "this is no request\n";
        socket->write(head(400, "text/plain", body.size()) + body);
        close(socket);
        return;
    }
    const int bodyStart = headLength + HeadEnd.size();
    if (length > LongestRequest - bodyStart) {
        socket->abort();
        return;
    }
    if (received.size() < bodyStart + length)
        return;
    socket->read(bodyStart);
    request.body = socket->read(length);
    connection->isAsked = true;
    connection->wantsBody = request.method != "HEAD";
    connection->isLast = wantsToLeave(request);
    answer(request, socket);
}
