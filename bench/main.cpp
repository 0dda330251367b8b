// SPDX-License-Identifier: GPL-3.0-or-later
#include "idle.h"
#include "latency.h"
#include "memory.h"
#include "messagecost.h"
#include "pageswitches.h"
#include "playing.h"
#include "playingzone.h"
#include "report.h"
#include "startup.h"
#include "testkit/machine/display.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "throughput.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QVector>

#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

/** Connects only for as long as it takes, so that the broker serves nobody but who is measured. */
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
    QCommandLineParser parser;
    const QCommandLineOption figures(
        QStringLiteral("figures"), QStringLiteral("writes the table there as well"), "FILE");
    parser.addOption(figures);
    parser.addHelpOption();
    parser.process(application);

    Display display;
    Broker broker(Broker::Subscriptions);
    PlayingZone zone;
    Report report;
    BrokerClient services;
    const QString throughput = QStringLiteral("throughput");
    const QVector<QPair<QString, std::function<bool()>>> measurements {
        // First, while no other client makes the broker send the stream once more.
        { throughput, [&] { return measureThroughput(broker, display, report); } },
        { QStringLiteral("startup"), [&] { return measureStartup(display, report); } },
        { QStringLiteral("memory"), [&] { return measureMemory(services, display, report); } },
        { QStringLiteral("latency"), [&] { return measureLatency(services, display, report); } },
        { QStringLiteral("playing"), [&] { return measurePlaying(services, display, report); } },
        { QStringLiteral("idle"), [&] { return measureIdle(services, display, report); } },
        { QStringLiteral("pages"),
            [&] { return measurePageSwitches(services, zone, display, report); } },
        { QStringLiteral("cost"), [&] { return measureMessageCost(report); } },
    };
    QStringList known;
    for (const auto &measurement : measurements)
        known.append(measurement.first);
    const QStringList named = parser.positionalArguments();
    for (const QString &name : named) {
        if (!known.contains(name)) {
            std::fprintf(stderr, "%s is none of: %s\n", qPrintable(name),
                qPrintable(known.join(QStringLiteral(", "))));
            return EXIT_FAILURE;
        }
    }

    if (!display.start() || !broker.start())
        return EXIT_FAILURE;
    bool isConnected = false;
    for (const auto &measurement : measurements) {
        if (!named.isEmpty() && !named.contains(measurement.first))
            continue;
        // All of it takes minutes, so it says what is going on.
        std::fprintf(stderr, "measuring: %s...\n", qPrintable(measurement.first));
        report.begin(measurement.first);
        if (measurement.first != throughput && !isConnected)
            isConnected = services.connectToBroker();
        if (!publish(zone) || !measurement.second())
            return EXIT_FAILURE;
    }
    report.print();
    return !parser.isSet(figures) || report.write(parser.value(figures)) ? EXIT_SUCCESS
                                                                         : EXIT_FAILURE;
}
