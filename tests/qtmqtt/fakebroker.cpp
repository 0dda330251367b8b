// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"

#include <algorithm>

#include <sys/socket.h>

namespace {
constexpr int PouredAheadBytes = 1 << 16;

/** Length of the first packet in @p bytes with its head; 0 while it is not complete. */
int packetLength(const QByteArray &bytes)
{
    int length = 0;
    for (int i = 1; i < bytes.size(); ++i) {
        length |= (bytes.at(i) & 0x7f) << (7 * (i - 1));
        if (!(bytes.at(i) & 0x80)) {
            const int total = i + 1 + length;
            return total <= bytes.size() ? total : 0;
        }
    }
    return 0;
}

/** How many bytes of a packet tell its length. */
int lengthBytes(const QByteArray &packet)
{
    int count = 1;
    while (packet.at(count) & 0x80)
        ++count;
    return count;
}
} // namespace

FakeBroker::FakeBroker(quint16 port)
{
    if (!m_server.listen(QHostAddress::LocalHost, port))
        qFatal("No listener on port %d", int(port));
    connect(&m_server, &QTcpServer::newConnection, this, &FakeBroker::accept);
}

void FakeBroker::accept()
{
    QTcpSocket *const socket = m_server.nextPendingConnection();
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    // What is under way when a flood ends is to be little.
    socket->setSocketOption(QAbstractSocket::SendBufferSizeSocketOption, PouredAheadBytes);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
    connect(socket, &QTcpSocket::bytesWritten, this, &FakeBroker::pourOn);
    m_socket = socket;
    m_unread.clear();
    ++m_connections;
}

void FakeBroker::read(QTcpSocket *socket)
{
    m_unread += socket->readAll();
    while (const int length = packetLength(m_unread)) {
        const QByteArray packet = m_unread.left(length);
        m_unread.remove(0, length);
        handle(packet);
    }
}

void FakeBroker::handle(const QByteArray &packet)
{
    m_packets.append(packet);
    const quint8 type = quint8(packet.at(0)) & 0xf0;
    if (type == Connect) {
        send(m_answer);
        if (m_closing)
            closeConnection();
    } else if (type == PingRequest && m_answeringPings) {
        send(QByteArray::fromHex("d000"));
    }
}

void FakeBroker::send(const QByteArray &bytes)
{
    if (m_socket)
        m_socket->write(bytes);
}

void FakeBroker::sendByteWise(const QByteArray &bytes)
{
    for (const char byte : bytes) {
        m_socket->write(&byte, 1);
        m_socket->flush();
    }
}

void FakeBroker::pour(const QByteArray &bytes, int times)
{
    m_poured = bytes;
    m_pourings = times;
    pourOn();
}

void FakeBroker::pourOn()
{
    for (; m_pourings > 0 && m_socket && m_socket->bytesToWrite() < PouredAheadBytes; --m_pourings)
        m_socket->write(m_poured);
}

void FakeBroker::answerSubscription(quint8 code)
{
    const auto request = std::find_if(m_packets.crbegin(), m_packets.crend(),
        [](const QByteArray &packet) { return (quint8(packet.at(0)) & 0xf0) == Subscribe; });
    const int id = 1 + lengthBytes(*request);
    send(QByteArray::fromHex("9003") + request->mid(id, 2) + char(code));
}

void FakeBroker::closeConnection()
{
    m_socket->disconnectFromHost();
}

void FakeBroker::resetConnection()
{
    const linger now { 1, 0 };
    setsockopt(int(m_socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &now, sizeof now);
    m_socket->abort();
}

int FakeBroker::count(Packet type) const
{
    return int(std::count_if(m_packets.cbegin(), m_packets.cend(),
        [type](const QByteArray &packet) { return (quint8(packet.at(0)) & 0xf0) == type; }));
}

bool FakeBroker::isDeserted() const
{
    return m_socket && m_socket->state() == QAbstractSocket::UnconnectedState;
}

QByteArray FakeBroker::message(const QByteArray &topic, const QByteArray &payload)
{
    return messageHead(topic, payload.size()) + payload;
}

QByteArray FakeBroker::messageHead(const QByteArray &topic, int payloadSize)
{
    QByteArray packet("\x30");
    for (int rest = 2 + topic.size() + payloadSize; rest > 0; rest >>= 7)
        packet += char(rest > 0x7f ? (rest & 0x7f) | 0x80 : rest);
    packet += char(topic.size() >> 8);
    packet += char(topic.size() & 0xff);
    return packet + topic;
}
