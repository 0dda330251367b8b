// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/imageserver.h"

#include <QBuffer>
#include <QImage>
#include <QTcpSocket>
#include <QTimer>
#include <QUrl>

namespace {

constexpr int TrickleMs = 20;

QString keyOf(const HttpServer::Request &request)
{
    const QString path = QUrl::fromEncoded(request.target).path();
    const QString prefix = QStringLiteral("/image/");
    return path.startsWith(prefix) ? path.mid(prefix.size()) : QString();
}

QByteArray picture(const ImageServer::Behaviour &behaviour)
{
    if (!behaviour.file.isEmpty())
        return behaviour.file;
    QImage image(behaviour.size, QImage::Format_RGB32);
    image.fill(behaviour.colour);
    QBuffer buffer;
    image.save(&buffer, behaviour.format);
    return buffer.data();
}

/** Sends more, as long as the client takes it. */
void flood(QTcpSocket *socket)
{
    static const QByteArray more(1 << 20, 'x');
    if (socket->bytesToWrite() < more.size())
        socket->write(more);
}

} // namespace

ImageServer::ImageServer(QObject *parent)
    : RecordingServer(parent)
{
    if (!listen(0))
        qFatal("the image server cannot be started: %s", qUtf8Printable(errorText()));
}

QByteArray ImageServer::address() const
{
    return "127.0.0.1:" + QByteArray::number(port());
}

int ImageServer::requestsFor(const QString &key) const
{
    int found = 0;
    for (const Request &request : requests())
        found += keyOf(request) == key ? 1 : 0;
    return found;
}

void ImageServer::reply(const Request &request, QTcpSocket *socket)
{
    const auto behaviour = m_behaviours.find(keyOf(request));
    if (behaviour == m_behaviours.end()) {
        respond(socket, 404, "text/plain", "no such picture");
        return;
    }
    if (behaviour->failures > 0) {
        --behaviour->failures;
        respond(socket, 500, "text/plain", "not now");
        return;
    }
    // The socket as context: nothing is answered any more once the client has gone.
    const Behaviour chosen = *behaviour;
    QTimer::singleShot(chosen.delayMs, socket, [this, chosen, socket] { behave(chosen, socket); });
}

void ImageServer::behave(const Behaviour &behaviour, QTcpSocket *socket)
{
    switch (behaviour.kind) {
    case Behaviour::Picture:
        respond(socket, 200, QByteArray("image/") + QByteArray(behaviour.format).toLower(),
            picture(behaviour));
        break;
    case Behaviour::Hang:
        break;
    case Behaviour::Drop:
        socket->abort();
        break;
    case Behaviour::Trouble:
        respond(socket, 500, "text/plain", "trouble");
        break;
    case Behaviour::Endless:
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\n\r\n");
        flood(socket);
        connect(socket, &QTcpSocket::bytesWritten, this, [socket] { flood(socket); });
        break;
    case Behaviour::Trickle: {
        socket->write("HTTP/1.1 200 OK\r\nContent-Type: image/jpeg\r\n\r\n");
        auto *const pace = new QTimer(socket);
        connect(pace, &QTimer::timeout, socket, [socket] { socket->write("x"); });
        pace->start(TrickleMs);
        break;
    }
    case Behaviour::Raw:
        socket->write(behaviour.file);
        socket->disconnectFromHost();
        break;
    case Behaviour::Garbage:
        respond(socket, 200, "image/jpeg", "this is no picture");
        break;
    }
}
