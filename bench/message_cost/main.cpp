// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/streammessage.h"
#include "messagehandler.h"
#include "mqtt.h"
#include "simulator/services/topics.h"

#include <QCoreApplication>
#include <QStringList>
#include <QVector>

#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int Contents = 1000;

QString zoneId(int number)
{
    return QStringLiteral("z%1").arg(number);
}

/** Brings messages to their targets, as the program does once the broker has delivered them. */
class Receiver {
public:
    void receive(const StreamMessage &message)
    {
        Mqtt::instance()->processMessageApi(message.payload, QMqttTopicName(message.topic));
        // What they have queued for the event loop is part of their cost.
        QCoreApplication::sendPostedEvents();
        ++m_received;
    }

    /** Receives messages of a zone until there have been so many. */
    void receiveUntil(int received, const QString &zone)
    {
        for (int i = 0; m_received < received; ++i)
            receive(StreamMessage::numbered(
                StreamMessage::Window + i % (Contents - StreamMessage::Window), zone));
    }

    /** Counts the instructions of the same messages each time, under this name. */
    void measure(const QByteArray &name, const QString &zone)
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

    /** As many zones, of which the first is the one that is controlled. */
    void receiveZones(int count)
    {
        QByteArray list;
        for (int i = 1; i <= count; ++i)
            list += QStringLiteral(",{\"id\":\"%1\",\"name\":\"Zone %1\"}").arg(zoneId(i)).toUtf8();
        receive({ Topics::availableZones(), '[' + list.mid(1) + ']' });
        for (int i = 1; i <= count; ++i) {
            const QByteArray name = "Zone " + zoneId(i).toUtf8();
            receive({ Topics::zone(zoneId(i), "name"), name });
            receive(
                { Topics::zone(zoneId(i), "outputs"), "[{\"display_name\":\"" + name + "\"}]" });
        }
    }

private:
    int m_received = 0;
};

} // namespace

/**
 * To be run by callgrind, which writes a profile for each count. Arguments: how many messages, and
 * how many zones there are to be at most.
 */
int main(int argc, char *argv[])
{
    // Before the player, which reads it once, is made.
    qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", "Zone z1");
    qInstallMessageHandler(messageHandler);
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int mostMessages = arguments.value(1).toInt();
    const int mostZones = arguments.value(2).toInt();
    if (mostMessages <= 0 || mostZones <= 0) {
        std::fputs("usage: touchui_message_cost MESSAGES ZONES\n", stderr);
        return EXIT_FAILURE;
    }
    Receiver receiver;
    receiver.receive({ Topics::core("coreDetected"), "true" });
    receiver.receiveZones(1);
    receiver.receive({ Topics::zone(zoneId(1), "state"), "playing" });
    for (int messages = 1; messages <= mostMessages; messages *= 10) {
        receiver.receiveUntil(messages, zoneId(1));
        receiver.measure("messages " + QByteArray::number(messages), zoneId(1));
    }
    for (int zones = 1; zones <= mostZones; zones *= 10) {
        receiver.receiveZones(zones);
        receiver.measure("zones " + QByteArray::number(zones), zoneId(1));
        if (zones > 1)
            receiver.measure("others " + QByteArray::number(zones), zoneId(zones));
    }
    return EXIT_SUCCESS;
}
