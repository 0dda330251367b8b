// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"
#include "packetpieces.h"

#include <QCoreApplication>
#include <QMqttClient>
#include <QMqttSubscription>
#include <QTcpServer>
#include <QTcpSocket>

/*
 * A hostile broker. The first byte says how: bit 0, whether it accepts the connection first; bit 1,
 * whether it ends with a reset or in order; the others, how many bytes it sends at a time, 0 for
 * all. The rest is what it sends.
 */

namespace {

QTcpServer *server = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    server = new QTcpServer;
    server->listen(QHostAddress::LocalHost);
    return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(
    std::uint8_t *data, std::size_t size, std::size_t maxSize, unsigned int seed)
{
    static const PieceMutator mutator(PacketPieces::split, PacketPieces::make);
    if (size == 0 || maxSize < 2) {
        data[0] = 1;
        return 1;
    }
    if (seed % 16 == 0)
        data[0] = std::uint8_t(seed >> 4);
    return 1 + mutator.mutate(data + 1, size - 1, maxSize - 1, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const bool accepts = data[0] & 1;
    const bool resets = data[0] & 2;
    const bool leaves = data[0] & 4;
    QByteArray stream(reinterpret_cast<const char *>(data + 1), int(size - 1));
    if (accepts)
        stream.prepend(QByteArray::fromHex("20020000"));
    const int step = data[0] >> 3 ? data[0] >> 3 : qMax(1, stream.size());

    QMqttClient client;
    client.setHostname(QStringLiteral("127.0.0.1"));
    client.setPort(server->serverPort());
    int connections = 0;
    int ends = 0;
    QObject::connect(&client, &QMqttClient::connected, [&] {
        ++connections;
        client.subscribe(QMqttTopicFilter(QStringLiteral("a/#")), 1);
        client.publish(QMqttTopicName(QStringLiteral("x")), "1", 1);
        client.publish(QMqttTopicName(QStringLiteral("x")), "2", 2);
        client.requestPing();
    });
    QObject::connect(&client, &QMqttClient::disconnected, [&] { ++ends; });
    QObject::connect(&client, &QMqttClient::messageReceived,
        [&](const QByteArray &, const QMqttTopicName &topic) {
            Fuzzing::require(connections == 1, "messages come within a connection");
            if (topic.name() == QLatin1String("a/b"))
                client.unsubscribe(QMqttTopicFilter(QStringLiteral("a/#")));
        });
    client.connectToHost();

    Fuzzing::waitUntil([] { return server->hasPendingConnections(); }, "the client connects");
    QTcpSocket *const socket = server->nextPendingConnection();
    Fuzzing::waitUntil([&] { return socket->bytesAvailable() > 0; }, "the client asks to connect");
    for (int sent = 0; sent < stream.size() && socket->state() == QTcpSocket::ConnectedState;
         sent += step) {
        socket->write(stream.mid(sent, step));
        socket->flush();
        QCoreApplication::processEvents();
        socket->readAll();
    }
    if (resets)
        socket->abort();
    else
        socket->disconnectFromHost();
    if (leaves)
        client.disconnectFromHost(); // finds what has not been read, and then the end
    Fuzzing::waitUntil([&] { return client.state() == QMqttClient::Disconnected; },
        "a client whose broker has gone notices");
    Fuzzing::require(connections <= 1 && ends <= 1, "a connection begins and ends once");
    delete socket;
    return 0;
}
