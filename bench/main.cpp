// SPDX-License-Identifier: GPL-3.0-or-later
#include "idle.h"
#include "latency.h"
#include "memory.h"
#include "playingzone.h"
#include "report.h"
#include "startup.h"
#include "testkit/machine/display.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "throughput.h"

#include <QCoreApplication>
#include <QVector>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

bool publish(PlayingZone &zone)
{
    BrokerClient services;
    return services.connectToBroker() && zone.publish(services);
}

} // namespace

/** Measures everything, or only what the arguments name, and prints the table. */
int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    Display display;
    Broker broker(Broker::Subscriptions);
    PlayingZone zone;
    Report report;
    const QVector<QPair<QString, std::function<bool(BrokerClient &)>>> measurements {
        { QStringLiteral("startup"),
            [&](BrokerClient &) { return measureStartup(display, report); } },
        { QStringLiteral("memory"),
            [&](BrokerClient &services) { return measureMemory(services, display, report); } },
        { QStringLiteral("latency"),
            [&](BrokerClient &services) { return measureLatency(services, display, report); } },
        { QStringLiteral("idle"),
            [&](BrokerClient &services) { return measureIdle(services, display, report); } },
    };
    const QString throughput = QStringLiteral("throughput");
    const QStringList named = QCoreApplication::arguments().mid(1);
    // All of it takes minutes, so it says what is going on.
    const auto wanted = [&](const QString &name) {
        if (!named.isEmpty() && !named.contains(name))
            return false;
        std::fprintf(stderr, "measuring: %s...\n", qPrintable(name));
        return true;
    };

    if (!display.start() || !broker.start() || !publish(zone))
        return EXIT_FAILURE;
    // First, while no other client makes the broker send the stream once more.
    if (wanted(throughput) && !measureThroughput(broker, display, report))
        return EXIT_FAILURE;
    BrokerClient services;
    if (!services.connectToBroker())
        return EXIT_FAILURE;
    for (const auto &measurement : measurements) {
        if (wanted(measurement.first) && !measurement.second(services))
            return EXIT_FAILURE;
    }
    report.print();
    return EXIT_SUCCESS;
}
