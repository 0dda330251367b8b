// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/streammessage.h"
#include "messagehandler.h"
#include "receiver.h"
#include "simulator/services/topics.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>
#include <cstdlib>

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
    // Not a scenario's opening: what plays may not cost anything here, and one zone grows to many.
    receiver.receive({ Topics::core("coreDetected"), "true" });
    receiver.receiveZones(1);
    receiver.receive({ Topics::zone(Receiver::zoneId(1), "state"), "playing" });
    for (int messages = 1; messages <= mostMessages; messages *= 10) {
        receiver.receiveUntil(messages, Receiver::zoneId(1));
        receiver.measure("messages " + QByteArray::number(messages), Receiver::zoneId(1));
    }
    for (int zones = 1; zones <= mostZones; zones *= 10) {
        receiver.receiveZones(zones);
        receiver.measure("zones " + QByteArray::number(zones), Receiver::zoneId(1));
        if (zones > 1)
            receiver.measure("others " + QByteArray::number(zones), Receiver::zoneId(zones));
    }
    return EXIT_SUCCESS;
}
