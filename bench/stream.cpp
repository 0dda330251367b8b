// SPDX-License-Identifier: GPL-3.0-or-later
#include "stream.h"

#include "eventwait.h"
#include "playingzone.h"
#include "simulator/services/topics.h"
#include "streammessage.h"

namespace {

// Packets of MQTT 3.1.1; a message at quality of service 0 has no identifier.
constexpr char ConnectPacket = 0x10;
constexpr char PublishPacket = 0x30;
const QByteArray CleanSessionWithoutName("\x00\x04MQTT\x04\x02\x00\x00\x00\x00", 12);
constexpr int ConnectAnswerSize = 4;

QByteArray packet(char type, const QByteArray &body)
{
    QByteArray bytes(1, type);
    int length = body.size();
    do {
        const int rest = length / 128;
        bytes += static_cast<char>(length % 128 + (rest > 0 ? 128 : 0));
        length = rest;
    } while (length > 0);
    return bytes + body;
}

QByteArray publication(const QByteArray &topic, const QByteArray &payload)
{
    QByteArray body;
    body += static_cast<char>(topic.size() / 256);
    body += static_cast<char>(topic.size() % 256);
    return packet(PublishPacket, body + topic + payload);
}

} // namespace

Stream::Stream(int messages)
    : m_messages(messages)
{
    for (int i = 0; i < messages; ++i) {
        const StreamMessage message = StreamMessage::numbered(i, PlayingZone::id());
        m_packets += publication(message.topic.toUtf8(), message.payload);
    }
}

bool Stream::connectToBroker()
{
    m_socket.connectToHost(QStringLiteral("127.0.0.1"), 1883);
    m_socket.write(packet(ConnectPacket, CleanSessionWithoutName));
    const bool accepted
        = waitForEvent([this] { return m_socket.bytesAvailable() >= ConnectAnswerSize; });
    if (!accepted)
        qWarning("the broker does not accept the connection of the stream");
    return accepted;
}

void Stream::sendCommand(const QByteArray &name)
{
    m_socket.write(publication(Topics::command().toUtf8(), "{\"command\":\"" + name + "\"}"));
}

void Stream::sendAll()
{
    m_socket.write(m_packets);
}
