// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/options.h"

#include "simulator/house/library.h"
#include "simulator/scenario/action.h"
#include "simulator/services/topics.h"

#include <QCommandLineParser>

namespace {

constexpr double HighestSpeed = 1000;

struct Known {
    QCommandLineOption list { QStringLiteral("list"),
        QStringLiteral("List the scenarios and end.") };
    QCommandLineOption scenario { QStringLiteral("scenario"),
        QStringLiteral("The scenario to play: one of the list, or a file. Default: playing."),
        QStringLiteral("NAME") };
    QCommandLineOption speed { QStringLiteral("speed"),
        QStringLiteral("Simulated seconds per second, 0 to 1000. With 0, time stands still after "
                       "the scenario's first moment. Default: 1."),
        QStringLiteral("N") };
    QCommandLineOption seed { QStringLiteral("seed"),
        QStringLiteral("Decides everything that is left to chance. Default: 1."),
        QStringLiteral("N") };
    QCommandLineOption brokerPort { QStringLiteral("broker-port"),
        QStringLiteral("The broker's port on 127.0.0.1. Default: 1883."), QStringLiteral("N") };
    QCommandLineOption imagePort { QStringLiteral("image-port"),
        QStringLiteral("The port for cover art; 0 takes a free one. Default: 0."),
        QStringLiteral("N") };
    QCommandLineOption webPort { QStringLiteral("web-port"),
        QStringLiteral("The port of the web service; 0 takes a free one, where the display will "
                       "not find it. Default: 8080."),
        QStringLiteral("N") };
    QCommandLineOption zone { QStringLiteral("zone"),
        QStringLiteral("The name of the appliance's own zone. Default: Hugo2X."),
        QStringLiteral("NAME") };
    QCommandLineOption panel { QStringLiteral("panel"),
        QStringLiteral("Make a display panel in DIR, which stands in for /sys/class/backlight, and "
                       "tell what is written to it."),
        QStringLiteral("DIR") };
    QCommandLineOption help { { QStringLiteral("h"), QStringLiteral("help") },
        QStringLiteral("Show this text and end.") };
    QCommandLineOption version { { QStringLiteral("v"), QStringLiteral("version") },
        QStringLiteral("Show the version and end.") };

    void addTo(QCommandLineParser *parser) const
    {
        parser->setApplicationDescription(
            QStringLiteral("Stands in for the other services of the appliance: remote control, "
                           "state, settings, cover art\nand web service. Prints what the display "
                           "publishes, one line each."));
        parser->addOptions({ list, scenario, speed, seed, brokerPort, imagePort, webPort, zone,
            panel, help, version });
    }
};

bool readPort(const QCommandLineParser &parser, const QCommandLineOption &option, int lowest,
    quint16 *port, QString *problem)
{
    if (!parser.isSet(option))
        return true;
    bool isNumber = false;
    const int value = parser.value(option).toInt(&isNumber);
    if (!isNumber || value < lowest || value > 65535) {
        *problem = QStringLiteral("--%1: expected a port from %2 to 65535, found \"%3\"")
                       .arg(option.names().first())
                       .arg(lowest)
                       .arg(parser.value(option));
        return false;
    }
    *port = quint16(value);
    return true;
}

bool nameIsTaken(const QString &name)
{
    const QVector<ZoneDescription> &zones = Library::zones();
    for (int i = 1; i < zones.size(); ++i) {
        if (zones.at(i).name == name)
            return true;
    }
    return false;
}

} // namespace

bool Options::parse(const QStringList &arguments, Options *options, QString *problem)
{
    const Known known;
    QCommandLineParser parser;
    known.addTo(&parser);
    if (!parser.parse(arguments)) {
        *problem = parser.errorText();
        return false;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *problem = QStringLiteral("expected only options, found \"%1\"")
                       .arg(parser.positionalArguments().first());
        return false;
    }
    Options made;
    if (parser.isSet(known.help))
        made.task = Help;
    else if (parser.isSet(known.version))
        made.task = Version;
    else if (parser.isSet(known.list))
        made.task = List;
    if (parser.isSet(known.scenario))
        made.scenario = parser.value(known.scenario);
    made.panel = parser.value(known.panel);
    bool isNumber = true;
    if (parser.isSet(known.speed))
        made.speed = parser.value(known.speed).toDouble(&isNumber);
    if (!isNumber || !(made.speed >= 0 && made.speed <= HighestSpeed)) {
        *problem = QStringLiteral("--speed: expected a number from 0 to 1000, found \"%1\"")
                       .arg(parser.value(known.speed));
        return false;
    }
    if (parser.isSet(known.seed))
        made.seed = parser.value(known.seed).toUInt(&isNumber);
    if (!isNumber) {
        *problem
            = QStringLiteral("--seed: expected a whole number from 0 to 4294967295, found \"%1\"")
                  .arg(parser.value(known.seed));
        return false;
    }
    if (parser.isSet(known.zone))
        made.zone = parser.value(known.zone);
    if (made.zone.isEmpty() || nameIsTaken(made.zone)) {
        *problem = QStringLiteral(
            "--zone: expected a name that no other zone of the house has, found \"%1\"")
                       .arg(made.zone);
        return false;
    }
    if (!readPort(parser, known.brokerPort, 1, &made.brokerPort, problem)
        || !readPort(parser, known.imagePort, 0, &made.imagePort, problem)
        || !readPort(parser, known.webPort, 0, &made.webPort, problem))
        return false;
    *options = made;
    return true;
}

QString Options::helpText()
{
    const Known known;
    QCommandLineParser parser;
    known.addTo(&parser);
    return parser.helpText()
        + QStringLiteral("\nWhile it runs, it takes faults from the topic \"%1\", for example\n"
                         "  mosquitto_pub -t %1 -m core_lost\n"
                         "  mosquitto_pub -t %1 -m 'image mode=slow ms=3000'\n"
                         "  mosquitto_pub -t %1 -m '{\"action\":\"group\",\"zones\":[\"%2\","
                         "\"Living Room\"]}'\n"
                         "Without a zone, the appliance's own is meant. All actions:\n")
              .arg(Topics::fault(), Options().zone)
        + Action::overview()
        + QStringLiteral(
            "\nExit status: 0 ended by a signal or \"quit\", 2 wrong options, "
            "3 malformed scenario,\nor none to list, 4 no broker, 5 a port is taken, or the "
            "panel cannot be made.\n");
}
