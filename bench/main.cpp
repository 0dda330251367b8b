// SPDX-License-Identifier: GPL-3.0-or-later
#include "broker.h"
#include "brokerclient.h"
#include "display.h"
#include "idle.h"
#include "latency.h"
#include "memory.h"
#include "playingzone.h"
#include "report.h"
#include "startup.h"
#include "throughput.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace {

/** Says what is going on, since the whole takes minutes. */
bool announced(const char *what)
{
    std::fprintf(stderr, "measuring %s...\n", what);
    return true;
}

bool publish(PlayingZone &zone)
{
    BrokerClient services;
    return services.connectToBroker() && zone.publish(services);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    Display display;
    Broker broker(Broker::Subscriptions);
    PlayingZone zone;
    Report report;
    if (!display.start() || !broker.start() || !publish(zone))
        return EXIT_FAILURE;
    // First, while no other client makes the broker send the stream once more.
    if (!announced("throughput") || !measureThroughput(broker, display, report))
        return EXIT_FAILURE;
    BrokerClient services;
    if (!services.connectToBroker())
        return EXIT_FAILURE;
    const bool measured = announced("start-up") && measureStartup(display, report)
        && announced("memory") && measureMemory(services, display, report) && announced("latency")
        && measureLatency(services, display, report) && announced("idling")
        && measureIdle(services, display, report);
    if (!measured)
        return EXIT_FAILURE;
    report.print();
    return EXIT_SUCCESS;
}
