// SPDX-License-Identifier: GPL-3.0-or-later
#include "receiver.h"

#include "bench/streammessage.h"
#include "mqtt.h"
#include "simulator/services/topics.h"

#include <QCoreApplication>
#include <QVector>

#include <valgrind/callgrind.h>

namespace {
constexpr int Contents = 1000;
} // namespace

void Receiver::receive(const StreamMessage &message)
{
    Mqtt::instance()->processMessageApi(message.payload, QMqttTopicName(message.topic));
    // What they have queued for the event loop is part of their cost.
    QCoreApplication::sendPostedEvents();
    ++m_received;
}

void Receiver::receiveUntil(int received, const QString &zone)
{
    for (int i = 0; m_received < received; ++i)
        receive(StreamMessage::numbered(
            StreamMessage::Window + i % (Contents - StreamMessage::Window), zone));
}

void Receiver::receiveZones(int count)
{
    QByteArray list;
    for (int i = 1; i <= count; ++i)
        list += QStringLiteral(",{\"id\":\"%1\",\"name\":\"Zone %1\"}").arg(zoneId(i)).toUtf8();
    receive({ Topics::availableZones(), '[' + list.mid(1) + ']' });
    for (int i = 1; i <= count; ++i) {
        const QByteArray name = "Zone " + zoneId(i).toUtf8();
        receive({ Topics::zone(zoneId(i), "name"), name });
        receive({ Topics::zone(zoneId(i), "outputs"), "[{\"display_name\":\"" + name + "\"}]" });
    }
}

void Receiver::measure(const QByteArray &name, const QString &zone)
{
    QVector<StreamMessage> messages;
    for (int i = 0; i < StreamMessage::Window; ++i)
        messages.append(StreamMessage::numbered(i, zone));
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    for (const StreamMessage &message : qAsConst(messages))
        receive(message);
    CALLGRIND_DUMP_STATS_AT(name.constData());
    CALLGRIND_STOP_INSTRUMENTATION;
}

QString Receiver::zoneId(int number)
{
    return QStringLiteral("z%1").arg(number);
}
