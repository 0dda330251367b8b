// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/panel.h"
#include "testkit/process/program.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
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
// The thread has its own rhythm, and may say its first word late.
const LogPattern PingThread
    = Line::debug(QStringLiteral("SystemdWatchdog::WorkerThread::")).andMore();

/**
 * The broker's word on a message that it got from a client with this QoS, retain flag and length.
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

/** Waits until the scene knows, and the log has said so and given the reason. */
bool saysThatItIsNotConnected(Program *program, int from)
{
    if (!program->waitForLine(
            Line::debug(QStringLiteral("Player::connectionStateChanged() false")), from))
        return false;
    const int lost
        = program->position(Line::warning(QStringLiteral("Mqtt::brokerDisconnected()")), from);
    const LogPattern reason = Line::critical(QStringLiteral("Mqtt::error() TransportInvalid"));
    return lost >= 0 && program->position(reason, lost) > lost;
}

/** Whether the program leaves the broker, which has just been started, alone. */
bool staysAway(Program *program, Broker *broker)
{
    // The welcome ends five seconds after the start: time enough for an attempt, were there one.
    const LogPattern failure = Line::debug(
        QStringLiteral("NavigationController::screenChanged() RoonConnectionFailure"));
    BrokerClient services;
    return program->waitForLine(failure) && services.connectToBroker()
        && broker->lines(QRegularExpression(QStringLiteral("^New client connected "))).size() == 1;
}

} // namespace

/**
 * The program and its broker: connection, what it says on its own, and what it makes of any input.
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
        if (!PingThread.matches(line))
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
    QVERIFY(saysThatItIsNotConnected(&program, 0));
    QCOMPARE(program.probe().objectProperty(
                 Probe::Target::type(QStringLiteral("Player")), QStringLiteral("remoteConnected")),
        QJsonValue(false));

    Broker broker;
    QVERIFY(broker.start());
    QVERIFY(staysAway(&program, &broker));
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
    QVERIFY(saysThatItIsNotConnected(&program, before));

    QVERIFY(broker.start());
    QVERIFY(staysAway(&program, &broker));
    QCOMPARE(program.count(Line::info(QStringLiteral("Mqtt::connectedToBroker()"))), 1);
    QVERIFY(program.stop());
}

void TestMessaging::oddInputGetsItsLogLine_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QStringList>("lines"); // besides the one that every message gets
    const auto row
        = [](const char *name, const QString &topic, const QByteArray &payload,
              const QStringList &lines) { QTest::newRow(name) << topic << payload << lines; };
    const QString process = "Mqtt::processMessageApi() ";
    const QString zones = RemoteControl + "roon/Zones";
    const QString noZone
        = "WARN  " + process + "received Roon zone data, but no zone object found!";
    const QString zoneUpdate = "DEBUG " + process + "receiving Roon zones update LEVELS";

    const auto unknownTopic = [&](const char *name, const QString &topic) {
        row(name, topic, "true", { "WARN  " + process + "unknown topic: " + topic });
    };
    unknownTopic("connected stands one level too low", RemoteControl + "connected");
    unknownTopic("zone topic without a zone", zones);

    const auto command
        = [&](const char *name, const QByteArray &payload, const QStringList &further = {}) {
              // A payload is text, and ends at a zero byte.
              row(name, RemoteControl + "Control/command", payload,
                  QStringList("INFO  " + process
                      + "received remote control command: " + payload.constData())
                      + further);
          };
    const auto unsupported = [&](const char *name, const QByteArray &payload, const char *value) {
        command(name, payload, { "WARN  " + process + "ignore unsupported command: " + value });
    };
    command("command: no JSON", "{");
    command("command: empty", "");
    command("command: an array", R"(["command"])");
    command("command: no member command", R"({"zone_id":"1"})");
    unsupported("command: unsupported", R"({"command":"reboot"})", "reboot");
    unsupported("command: in capital letters", R"({"command":"TOGGLE_STANDBY"})", "TOGGLE_STANDBY");
    unsupported("command: a number", R"({"command":5})", "");
    command("command: a zero byte", QByteArray("ab\0cd", 5));

    const auto core = [&](const char *name, const QString &below, const QByteArray &payload,
                          const QString &line) {
        row(name, RemoteControl + "roon/Roon" + below, payload, { line });
    };
    const QString unknownOfCore = "WARN  Mqtt::updateRoon() unknown property: ";
    const QString version = "INFO  Mqtt::updateRoon() setting property version to value: ";
    core("core: unknown property", "/foo", "1", unknownOfCore + "foo");
    core("core: no property", "", "1", unknownOfCore);
    core("core: wrong letter case", "/serverurl", "1", unknownOfCore + "serverurl");
    core("core: written at info level", "/version", "2.0 \xc3\xbc", version + "2.0 \u00fc");
    core("core: beyond Latin-1", "/version", "\xe4\xb8\xad", version + "?");

    row("state: unknown property", "Velunor/State/v1/foo", "1",
        { "INFO  Mqtt::updateVelunorState() foo",
            "WARN  Mqtt::updateVelunorState() unknown property: foo" });
    row("spotify: unknown property", RemoteControl + "spotify/foo", "bar",
        { "INFO  Mqtt::updateSpotify() foo", "DEBUG Mqtt::updateSpotify() bar",
            "WARN  Mqtt::updateSpotify() unknown property: foo" });
    row("settings: unknown key", "Velunor/Settings/v2/foo", "1",
        { "DEBUG Mqtt::updateSettings() foo" });
    row("settings: no key", "Velunor/Settings/v2", "1", { "DEBUG Mqtt::updateSettings() " });

    row("zone: empty id", zones + "//name", "x",
        { zoneUpdate, noZone,
            "WARN  " + process + "something went wrong while inserting Roon zone" });
    const auto available = [&](const char *name, const char *list) {
        row(name, zones + "/available", list,
            { "DEBUG " + process + "received 'available' message " + list });
    };
    available("zones: no JSON", "[{");
    available("zones: an object", "{}");

    int id = 0;
    const auto zone = [&](const char *name, const QString &below, const QByteArray &payload,
                          const QString &line) {
        const QString topic = zones + QStringLiteral("/n%1").arg(++id);
        row(name, topic + below, payload,
            { zoneUpdate, noZone, "INFO  RoonZones::add() inserting zone " + topic.section('/', -1),
                "DEBUG " + process + "adding Roon zone completed!", line });
    };
    const QString unknownOfZone = "WARN  Mqtt::updateZone() unknown property: ";
    const QString length = "DEBUG Mqtt::updateZone() setting property nowPlaying_length to value: ";
    zone("zone: unknown property", "/foo", "1", unknownOfZone + "foo");
    zone("zone: no property", "", "1", unknownOfZone);
    zone("zone: group without a member", "/settings", "1", unknownOfZone + "settings_");
    zone("zone: unknown member", "/nowPlaying/foo", "1", unknownOfZone + "nowPlaying_foo");
    zone("zone: not a number", "/nowPlaying/length", "abc", length + "0");
    zone("zone: a negative count", "/nowPlaying/length", "-5", length + "0");
    zone("zone: outputs without JSON", "/outputs", "nonsense", "DEBUG RoonZone::setOutputs() []");
}

void TestMessaging::oddInputGetsItsLogLine()
{
    QFETCH(QString, topic);
    QFETCH(QByteArray, payload);
    QFETCH(QStringList, lines);
    Broker broker;
    broker.allowUndocumented();
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
        if (!PingThread.matches(line) && !line.withoutPlace().contains(constructed))
            logged.append(line.withoutPlace().replace(levels, QStringLiteral("\\1LEVELS")));
    }
    QCOMPARE(logged, lines);
}

void TestMessaging::randomMessagesDoNoHarm()
{
    Broker broker;
    broker.allowUndocumented();
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
