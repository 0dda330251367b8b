// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/machine/panel.h"
#include "testkit/process/program.h"
#include "testkit/waiting.h"

#include <QRandomGenerator>
#include <QRegularExpression>
#include <QTest>

namespace {

const QString RemoteControl = QStringLiteral("Velunor/Controller/remote_control/v4/");
const QString ZoneTopic = QStringLiteral("Velunor/touch_ui/v3/Display/zone");
const QString IdleTopic = QStringLiteral("Velunor/touch_ui/v3/Display/idle");
const QString BrightnessTopic = QStringLiteral("Velunor/touch_ui/v3/Display/brightness");

const LogPattern Announced = Line::info(QStringLiteral("Player::mqttConnected()"));
const LogPattern Ping = Line::debug(QStringLiteral("SystemdWatchdog::WorkerThread::PING"));

/** The broker's word on a message that it got from a client with this QoS, retain flag and length.
 */
QRegularExpression received(const QString &topic, int qos, bool retain, int length)
{
    return QRegularExpression(QStringLiteral(
        "^Received PUBLISH from \\S+ \\(d0, q%1, r%2, m\\d+, '%3', \\.\\.\\. \\(%4 bytes\\)\\)$")
                                  .arg(qos)
                                  .arg(retain ? 1 : 0)
                                  .arg(QRegularExpression::escape(topic))
                                  .arg(length));
}

} // namespace

/** The program and its broker: connection, what it says on its own, and what it makes of any input.
 */
class TestMessaging : public QObject {
    Q_OBJECT

private slots:
    void subscribesInOrderAndAnnouncesTheZone();
    void announcesTheWantedZone_data();
    void announcesTheWantedZone();
    void whatWasPublishedBeforeTheConnectionIsLost();
    void retainedStateIsTakenOver();
    void withoutBrokerItRunsAndStaysDisconnected();
    void aLostBrokerIsNotSoughtAgain_data();
    void aLostBrokerIsNotSoughtAgain();
    void oddInputGetsItsLogLine_data();
    void oddInputGetsItsLogLine();
    void randomMessagesDoNoHarm();
};

void TestMessaging::subscribesInOrderAndAnnouncesTheZone()
{
    const QStringList filters { QStringLiteral("Velunor/Settings/v2/#"),
        QStringLiteral("Velunor/State/v1/#"), RemoteControl + QStringLiteral("roon/Roon/#"),
        RemoteControl + QStringLiteral("roon/Zones/#"), RemoteControl + QStringLiteral("connected"),
        RemoteControl + QStringLiteral("Control/command"),
        RemoteControl + QStringLiteral("spotify/#") };
    Broker broker;
    QVERIFY(broker.start());
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Announced));

    QStringList expected { QStringLiteral("INFO  Mqtt::connectedToBroker()") };
    for (const QString &filter : filters)
        expected.append(QStringLiteral("INFO  Mqtt::subscribe() to ") + filter);
    expected.append(QStringLiteral("INFO  Player::mqttConnected()"));
    QStringList logged;
    const int connected = program.position(Line::info(QStringLiteral("Mqtt::connectedToBroker()")));
    for (const LogLine &line :
        program.log().mid(connected, program.position(Announced) - connected + 1)) {
        if (!Ping.matches(line))
            logged.append(line.withoutPlace());
    }
    QCOMPARE(logged, expected);

    QVERIFY(broker.waitForLine(received(ZoneTopic, 1, true, 6)));
    const QRegularExpression subscribed(QStringLiteral("^\t(Velunor/.*) \\(QoS 0\\)$"));
    QStringList subscriptions;
    for (const QString &line : broker.lines(subscribed))
        subscriptions.append(subscribed.match(line).captured(1));
    QCOMPARE(subscriptions, filters);
}

void TestMessaging::announcesTheWantedZone_data()
{
    QTest::addColumn<QString>("variable");
    QTest::addColumn<QByteArray>("zone");
    QTest::newRow("not set") << QString() << QByteArray("Hugo2X");
    QTest::newRow("set") << QStringLiteral("Kitchen") << QByteArray("Kitchen");
    QTest::newRow("accented") << QStringLiteral("K\u00fcche \u4e2d")
                              << QByteArray("K\xc3\xbc"
                                            "che \xe4\xb8\xad");
}

void TestMessaging::announcesTheWantedZone()
{
    QFETCH(QString, variable);
    QFETCH(QByteArray, zone);
    Broker broker;
    QVERIFY(broker.start());
    Program program;
    if (!variable.isEmpty())
        program.setEnvironment(QStringLiteral("VELUNOR_TOUCHUI_CONTROL_ZONE"), variable);
    QVERIFY(program.startAndWait());
    QVERIFY(broker.waitForLine(received(ZoneTopic, 1, true, zone.size())));

    BrokerClient late;
    QVERIFY(late.connectToBroker());
    QVERIFY(late.waitFor(ZoneTopic, zone));
    QVERIFY(late.messages().first().retained);
}

void TestMessaging::whatWasPublishedBeforeTheConnectionIsLost()
{
    Broker broker;
    BrokerClient services;
    QVERIFY(services.startBroker(&broker));
    const Panel panel;
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Announced));
    QVERIFY(services.waitFor(ZoneTopic, "Hugo2X"));
    QCOMPARE(services.messages().size(), 1); // neither idle nor brightness came through

    // Without a core the welcome ends on the connection failure page, idle and at default
    // brightness.
    QVERIFY(services.waitFor(BrightnessTopic, "150"));
    QCOMPARE(services.messages().size(), 3);
    QCOMPARE(services.messages().at(1).topic, IdleTopic);
    QCOMPARE(services.messages().at(1).payload, QByteArray("true"));
    QCOMPARE(services.messages().at(2).topic, BrightnessTopic);
    QVERIFY(broker.waitForLine(received(IdleTopic, 1, false, 4)));
    QVERIFY(broker.waitForLine(received(BrightnessTopic, 1, true, 3)));
}

void TestMessaging::retainedStateIsTakenOver()
{
    Broker broker;
    BrokerClient services;
    QVERIFY(services.startBroker(&broker));
    services.publish(RemoteControl + QStringLiteral("roon/Roon/coreDetected"), "true", true);
    services.publish(RemoteControl + QStringLiteral("roon/Zones/available"),
        R"([{"id":"z1","name":"Hugo2X"}])", true);
    services.publish(RemoteControl + QStringLiteral("roon/Zones/z1/name"), "Hugo2X", true);
    services.publish(RemoteControl + QStringLiteral("roon/Zones/z1/nowPlaying/song"),
        "Stra\xc3\x9f"
        "e",
        true);
    QVERIFY(services.flush());

    Program program;
    QVERIFY(program.startAndWait());
    const Probe::Target player = Probe::Target::type(QStringLiteral("Player"));
    QTRY_COMPARE_WITH_TIMEOUT(program.probe().objectProperty(player, QStringLiteral("song")),
        QJsonValue(QStringLiteral("Stra\u00dfe")), PatienceMs);
    QCOMPARE(program.probe().objectProperty(player, QStringLiteral("zone")),
        QJsonValue(QStringLiteral("Hugo2X")));
}

void TestMessaging::withoutBrokerItRunsAndStaysDisconnected()
{
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(
        program.waitForLine(Line::debug(QStringLiteral("Player::connectionStateChanged() false"))));
    const int lost = program.position(Line::warning(QStringLiteral("Mqtt::brokerDisconnected()")));
    QVERIFY(lost >= 0);
    QVERIFY(program.position(Line::critical(QStringLiteral("Mqtt::error() TransportInvalid")), lost)
        > lost);
    QCOMPARE(program.probe().objectProperty(
                 Probe::Target::type(QStringLiteral("Player")), QStringLiteral("remoteConnected")),
        QJsonValue(false));

    Broker broker;
    QVERIFY(broker.start());
    // The welcome ends five seconds after the start: time enough for an attempt, were there one.
    QVERIFY(program.waitForLine(Line::debug(
        QStringLiteral("NavigationController::screenChanged() RoonConnectionFailure"))));
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    QCOMPARE(broker.lines(QRegularExpression(QStringLiteral("^New client connected "))).size(), 1);
    QVERIFY(program.stop());
}

void TestMessaging::aLostBrokerIsNotSoughtAgain_data()
{
    QTest::addColumn<bool>("killed");
    QTest::newRow("stopped") << false;
    QTest::newRow("killed") << true;
}

void TestMessaging::aLostBrokerIsNotSoughtAgain()
{
    QFETCH(bool, killed);
    Broker broker;
    QVERIFY(broker.start());
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Announced));
    const int before = program.logSize();
    QVERIFY(killed ? broker.kill() : broker.stop());
    QVERIFY(program.waitForLine(
        Line::debug(QStringLiteral("Player::connectionStateChanged() false")), before));
    const int lost
        = program.position(Line::warning(QStringLiteral("Mqtt::brokerDisconnected()")), before);
    QVERIFY(lost >= 0);
    QVERIFY(program.position(Line::critical(QStringLiteral("Mqtt::error() TransportInvalid")), lost)
        > lost);

    QVERIFY(broker.start());
    QVERIFY(program.waitForLine(Line::debug(
        QStringLiteral("NavigationController::screenChanged() RoonConnectionFailure"))));
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    QCOMPARE(broker.lines(QRegularExpression(QStringLiteral("^New client connected "))).size(), 1);
    QCOMPARE(program.count(Line::info(QStringLiteral("Mqtt::connectedToBroker()"))), 1);
    QVERIFY(program.stop());
}

void TestMessaging::oddInputGetsItsLogLine_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("lines"); // besides the one that every message gets
    const auto unknownTopic = [](const QString &topic) {
        return QStringList { QStringLiteral("WARN  Mqtt::processMessageApi() unknown topic: ")
            + topic };
    };
    const auto command = [](const QString &text) {
        return QStringLiteral("INFO  Mqtt::processMessageApi() received remote control command: ")
            + text;
    };
    const auto unsupported = [](const QString &value) {
        return QStringLiteral("WARN  Mqtt::processMessageApi() ignore unsupported command: ")
            + value;
    };
    const QString commandTopic = RemoteControl + QStringLiteral("Control/command");
    const QString connected = RemoteControl + QStringLiteral("connected");
    const QString zones = RemoteControl + QStringLiteral("roon/Zones");
    const QString core = RemoteControl + QStringLiteral("roon/Roon");
    const QString spotify = RemoteControl + QStringLiteral("spotify");
    const QString state = QStringLiteral("Velunor/State/v1");
    const QString settings = QStringLiteral("Velunor/Settings/v2");

    QTest::newRow("connected stands one level too low")
        << connected << QByteArray("true") << unknownTopic(connected);
    QTest::newRow("zone topic without a zone") << zones << QByteArray("x") << unknownTopic(zones);

    QTest::newRow("command: no JSON")
        << commandTopic << QByteArray("{") << QStringList { command(QStringLiteral("{")) };
    QTest::newRow("command: empty")
        << commandTopic << QByteArray("") << QStringList { command(QString()) };
    QTest::newRow("command: an array") << commandTopic << QByteArray(R"(["command"])")
                                       << QStringList { command(QStringLiteral(R"(["command"])")) };
    QTest::newRow("command: no member command")
        << commandTopic << QByteArray(R"({"zone_id":"1"})")
        << QStringList { command(QStringLiteral(R"({"zone_id":"1"})")) };
    QTest::newRow("command: unsupported")
        << commandTopic << QByteArray(R"({"command":"reboot"})")
        << QStringList { command(QStringLiteral(R"({"command":"reboot"})")),
               unsupported(QStringLiteral("reboot")) };
    QTest::newRow("command: in capital letters")
        << commandTopic << QByteArray(R"({"command":"TOGGLE_STANDBY"})")
        << QStringList { command(QStringLiteral(R"({"command":"TOGGLE_STANDBY"})")),
               unsupported(QStringLiteral("TOGGLE_STANDBY")) };
    QTest::newRow("command: a number")
        << commandTopic << QByteArray(R"({"command":5})")
        << QStringList { command(QStringLiteral(R"({"command":5})")), unsupported(QString()) };
    QTest::newRow("command: a zero byte")
        << commandTopic << QByteArray("ab\0cd", 5) << QStringList { command(QStringLiteral("ab")) };

    QTest::newRow("core: unknown property")
        << core + QStringLiteral("/foo") << QByteArray("1")
        << QStringList { QStringLiteral("WARN  Mqtt::updateRoon() unknown property: foo") };
    QTest::newRow("core: no property")
        << core << QByteArray("1")
        << QStringList { QStringLiteral("WARN  Mqtt::updateRoon() unknown property: ") };
    QTest::newRow("core: wrong letter case")
        << core + QStringLiteral("/serverurl") << QByteArray("1")
        << QStringList { QStringLiteral("WARN  Mqtt::updateRoon() unknown property: serverurl") };
    QTest::newRow("core: written at info level")
        << core + QStringLiteral("/version") << QByteArray("2.0 \xc3\xbc")
        << QStringList { QStringLiteral(
               "INFO  Mqtt::updateRoon() setting property version to value: 2.0 \u00fc") };
    QTest::newRow("core: beyond Latin-1")
        << core + QStringLiteral("/version") << QByteArray("\xe4\xb8\xad")
        << QStringList { QStringLiteral(
               "INFO  Mqtt::updateRoon() setting property version to value: ?") };

    QTest::newRow("state: unknown property")
        << state + QStringLiteral("/foo") << QByteArray("1")
        << QStringList { QStringLiteral("INFO  Mqtt::updateVelunorState() foo"),
               QStringLiteral("WARN  Mqtt::updateVelunorState() unknown property: foo") };
    QTest::newRow("spotify: unknown property")
        << spotify + QStringLiteral("/foo") << QByteArray("bar")
        << QStringList { QStringLiteral("INFO  Mqtt::updateSpotify() foo"),
               QStringLiteral("DEBUG Mqtt::updateSpotify() bar"),
               QStringLiteral("WARN  Mqtt::updateSpotify() unknown property: foo") };
    QTest::newRow("settings: unknown key")
        << settings + QStringLiteral("/foo") << QByteArray("1")
        << QStringList { QStringLiteral("DEBUG Mqtt::updateSettings() foo") };
    QTest::newRow("settings: no key")
        << settings << QByteArray("1")
        << QStringList { QStringLiteral("DEBUG Mqtt::updateSettings() ") };

    QTest::newRow("zone: empty id")
        << zones + QStringLiteral("//name") << QByteArray("x")
        << QStringList { QStringLiteral(
                             "DEBUG Mqtt::processMessageApi() receiving Roon zones update LEVELS"),
               QStringLiteral("WARN  Mqtt::processMessageApi() received Roon zone data, but no "
                              "zone object found!"),
               QStringLiteral("WARN  Mqtt::processMessageApi() something went wrong while "
                              "inserting Roon zone") };
    QTest::newRow("zones: no JSON")
        << zones + QStringLiteral("/available") << QByteArray("[{")
        << QStringList { QStringLiteral(
               "DEBUG Mqtt::processMessageApi() received 'available' message [{") };
    QTest::newRow("zones: an object")
        << zones + QStringLiteral("/available") << QByteArray("{}")
        << QStringList { QStringLiteral(
               "DEBUG Mqtt::processMessageApi() received 'available' message {}") };
    const auto zone = [](const QString &id, const QStringList &lines) {
        return QStringList {
            QStringLiteral("DEBUG Mqtt::processMessageApi() receiving Roon zones update LEVELS"),
            QStringLiteral("WARN  Mqtt::processMessageApi() received Roon zone data, but no zone "
                           "object found!"),
            QStringLiteral("INFO  RoonZones::add() inserting zone ") + id,
            QStringLiteral("DEBUG Mqtt::processMessageApi() adding Roon zone completed!")
        }
        + lines;
    };
    QTest::newRow("zone: unknown property")
        << zones + QStringLiteral("/n1/foo") << QByteArray("1")
        << zone(QStringLiteral("n1"),
               { QStringLiteral("WARN  Mqtt::updateZone() unknown property: foo") });
    QTest::newRow("zone: no property")
        << zones + QStringLiteral("/n2") << QByteArray("1")
        << zone(QStringLiteral("n2"),
               { QStringLiteral("WARN  Mqtt::updateZone() unknown property: ") });
    QTest::newRow("zone: group without a member")
        << zones + QStringLiteral("/n3/settings") << QByteArray("1")
        << zone(QStringLiteral("n3"),
               { QStringLiteral("WARN  Mqtt::updateZone() unknown property: settings_") });
    QTest::newRow("zone: unknown member")
        << zones + QStringLiteral("/n4/nowPlaying/foo") << QByteArray("1")
        << zone(QStringLiteral("n4"),
               { QStringLiteral("WARN  Mqtt::updateZone() unknown property: nowPlaying_foo") });
    QTest::newRow("zone: not a number")
        << zones + QStringLiteral("/n5/nowPlaying/length") << QByteArray("abc")
        << zone(QStringLiteral("n5"),
               { QStringLiteral(
                   "DEBUG Mqtt::updateZone() setting property nowPlaying_length to value: 0") });
    QTest::newRow("zone: a negative count")
        << zones + QStringLiteral("/n6/nowPlaying/length") << QByteArray("-5")
        << zone(QStringLiteral("n6"),
               { QStringLiteral(
                   "DEBUG Mqtt::updateZone() setting property nowPlaying_length to value: 0") });
    QTest::newRow("zone: outputs without JSON")
        << zones + QStringLiteral("/n7/outputs") << QByteArray("nonsense")
        << zone(QStringLiteral("n7"), { QStringLiteral("DEBUG RoonZone::setOutputs() []") });
}

void TestMessaging::oddInputGetsItsLogLine()
{
    QFETCH(QString, topic);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, lines);
    Broker broker;
    BrokerClient services;
    QVERIFY(services.startBroker(&broker));
    Program program;
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Announced));
    QVERIFY(services.waitFor(ZoneTopic, "Hugo2X")); // the subscriptions are in force

    const int before = program.logSize();
    services.publish(topic, payload);
    services.publish(QStringLiteral("Velunor/Settings/v2/end_of_test"), "");
    const LogPattern end = Line::debug(
        QStringLiteral("Mqtt::processMessageApi() receiving msg Velunor/Settings/v2/end_of_test"));
    QVERIFY(program.waitForLine(end, before));

    lines.prepend(QStringLiteral("DEBUG Mqtt::processMessageApi() receiving msg ") + topic);
    QStringList logged;
    const QString constructed = QStringLiteral("::constructor in thread ");
    const QRegularExpression levels(
        QStringLiteral("^(DEBUG Mqtt::processMessageApi\\(\\) receiving Roon zones update ).*"));
    for (const LogLine &line : program.log().mid(before, program.position(end, before) - before)) {
        // A message may be the first to need an object.
        if (!Ping.matches(line) && !line.withoutPlace().contains(constructed))
            logged.append(line.withoutPlace().replace(levels, QStringLiteral("\\1LEVELS")));
    }
    QCOMPARE(logged, lines);
}

void TestMessaging::randomMessagesDoNoHarm()
{
    Broker broker;
    BrokerClient services;
    QVERIFY(services.startBroker(&broker));
    Program program;
    program.unsetEnvironment(QStringLiteral("TOUCHUI_DEBUG"));
    QVERIFY(program.startAndWait());
    QVERIFY(program.waitForLine(Announced));

    const QStringList levels { QStringLiteral("Velunor"), QStringLiteral("State"),
        QStringLiteral("Settings"), QStringLiteral("Controller"), QStringLiteral("remote_control"),
        QStringLiteral("v1"), QStringLiteral("v2"), QStringLiteral("v4"), QStringLiteral("roon"),
        QStringLiteral("Roon"), QStringLiteral("Zones"), QStringLiteral("available"),
        QStringLiteral("Control"), QStringLiteral("command"), QStringLiteral("connected"),
        QStringLiteral("spotify"), QStringLiteral("z1"), QStringLiteral("nowPlaying"),
        QStringLiteral("volume"), QStringLiteral("settings"), QStringLiteral("song"),
        QStringLiteral("outputs"), QStringLiteral("state"), QStringLiteral("id"),
        QStringLiteral("name"), QStringLiteral("step"),
        QStringLiteral("touchscreen_screensaver_time"), QString(), QStringLiteral("\u4e2d") };
    const QStringList roots { QStringLiteral("Velunor/State/v1"),
        QStringLiteral("Velunor/Settings/v2"), RemoteControl + QStringLiteral("roon/Roon"),
        RemoteControl + QStringLiteral("roon/Zones"), RemoteControl + QStringLiteral("spotify"),
        RemoteControl + QStringLiteral("Control/command") };
    QRandomGenerator random(20240501); // the same messages in every run
    const auto pick
        = [&random](const QStringList &list) { return list.at(random.bounded(list.size())); };
    for (int i = 0; i < 2000; ++i) {
        QString topic = pick(roots);
        if (!topic.endsWith(QStringLiteral("command"))) {
            for (int depth = random.bounded(4); depth > 0; --depth)
                topic += QLatin1Char('/') + pick(levels);
        }
        QByteArray payload(random.bounded(40), Qt::Uninitialized);
        for (char &byte : payload)
            byte = static_cast<char>(random.bounded(256));
        services.publish(topic, payload);
    }
    services.publish(RemoteControl + QStringLiteral("roon/Roon/version"), "still here");
    QVERIFY(program.waitForLine(Line::info(
        QStringLiteral("Mqtt::updateRoon() setting property version to value: still here"))));
    QVERIFY(program.stop());
}

QTEST_GUILESS_MAIN(TestMessaging)
#include "tst_messaging.moc"
