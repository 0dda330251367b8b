// SPDX-License-Identifier: GPL-3.0-or-later
#include "packetpieces.h"

namespace {

using Random = PieceMutator::Random;

enum Type : unsigned char {
    ConnectAnswer = 0x20,
    Publish = 0x30,
    PublishAnswer = 0x40,
    PublishReceived = 0x50,
    PublishRelease = 0x62,
    PublishComplete = 0x70,
    SubscribeAnswer = 0x90,
    UnsubscribeAnswer = 0xb0,
    PingAnswer = 0xd0,
};

QByteArray twoBytes(unsigned int number)
{
    return QByteArray(1, char(number >> 8 & 0xff)) + QByteArray(1, char(number & 0xff));
}

QByteArray withLength(unsigned char head, const QByteArray &body, unsigned int length)
{
    QByteArray packet(1, char(head));
    do {
        packet.append(char((length & 0x7f) | (length > 0x7f ? 0x80 : 0)));
        length >>= 7;
    } while (length > 0);
    return packet + body;
}

QByteArray message(Random &random)
{
    static const QVector<QByteArray> topics { "a", "a/b", "", "a/#", "+", QByteArray("a\0b", 3),
        "\xff\xfe", "Velunor/State/v1/updateAvailable", QByteArray(300, 't') };
    const unsigned int flags = random() % 16;
    const QByteArray topic = PieceMutator::oneOf(topics, random);
    QByteArray body = twoBytes(unsigned(topic.size())) + topic;
    if (flags & 0x06)
        body += twoBytes(random() % 5);
    body += QByteArray(int(random() % 4) * 60, 'p');
    return withLength(static_cast<unsigned char>(Publish | flags), body, unsigned(body.size()));
}

} // namespace

QVector<QByteArray> PacketPieces::split(const QByteArray &stream)
{
    QVector<QByteArray> packets;
    for (int begin = 0; begin < stream.size();) {
        int at = begin + 1;
        int length = 0;
        int shift = 0;
        bool more = true;
        while (more && at < stream.size() && shift < 28) {
            length |= (stream.at(at) & 0x7f) << shift;
            more = stream.at(at) & 0x80;
            shift += 7;
            ++at;
        }
        const int size
            = more || length > stream.size() - at ? stream.size() - begin : at + length - begin;
        packets.append(stream.mid(begin, size));
        begin += size;
    }
    return packets;
}

QByteArray PacketPieces::make(Random &random)
{
    static const QVector<unsigned char> answers { PublishAnswer, PublishReceived, PublishRelease,
        PublishComplete, SubscribeAnswer, UnsubscribeAnswer };
    static const QVector<unsigned int> lengths { 0, 1, 2, 3, 127, 128, 16383, 16384, 2097152,
        268435455 };
    QByteArray packet;
    switch (random() % 5) {
    case 0:
        packet = withLength(ConnectAnswer,
            QByteArray(1, char(random() % 2)) + QByteArray(1, char(random() % 7)), 2);
        break;
    case 1:
        packet = QByteArray(1, char(PingAnswer)) + QByteArray(1, '\0');
        break;
    case 2:
        packet = message(random);
        break;
    default: {
        const unsigned char type = PieceMutator::oneOf(answers, random);
        QByteArray body = twoBytes(random() % 6);
        if (type == SubscribeAnswer)
            body += QByteArray(1, char(random() % 2 ? 0x80 : random() % 4));
        packet = withLength(type, body, unsigned(body.size()));
    }
    }
    switch (random() % 16) {
    case 0: // of a type or with flags that no broker sends
        packet[0] = char(random() % 256);
        break;
    case 1: // says that it is longer or shorter than it is
        packet = withLength(static_cast<unsigned char>(packet.at(0)), packet.mid(2),
            PieceMutator::oneOf(lengths, random));
        break;
    case 2: // its length never ends
        packet.insert(1, QByteArray(5, '\xff'));
        break;
    default:
        break;
    }
    return packet;
}
