// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "navigationcontroller.h"
#include "nobroker.h"
#include "player.h"
#include "roon.h"
#include "roonzones.h"
#include "settings.h"
#include "signalrecorder.h"
#include "spotify.h"
#include "velunor_state.h"

#include <QRandomGenerator>
#include <QTest>

#include <memory>

namespace {

const QString Remote = QStringLiteral("Velunor/Controller/remote_control/v4/");
const QString ReceivingLine = QStringLiteral("debug: Mqtt::processMessageApi() receiving msg ");
const QString UnknownLine = QStringLiteral("warning: Mqtt::processMessageApi() unknown topic: ");
const QString CommandLine
    = QStringLiteral("info: Mqtt::processMessageApi() received remote control command: ");
const QString UnsupportedLine
    = QStringLiteral("warning: Mqtt::processMessageApi() ignore unsupported command: ");
const QString ToggleLine
    = QStringLiteral("info: Mqtt::processMessageApi() received 'toggle_standby' command");
const QString AvailableLine
    = QStringLiteral("debug: Mqtt::processMessageApi() received 'available' message ");
const QString ZoneLine
    = QStringLiteral("debug: Mqtt::processMessageApi() receiving Roon zones update ");
const QString NoZoneLine = QStringLiteral(
    "warning: Mqtt::processMessageApi() received Roon zone data, but no zone object found!");
const QString NotAddedLine = QStringLiteral(
    "warning: Mqtt::processMessageApi() something went wrong while inserting Roon zone");
const QString AddedLine
    = QStringLiteral("debug: Mqtt::processMessageApi() adding Roon zone completed!");
const QString PlayerLine = QStringLiteral("debug: Player::update() looking for zone ");

} // namespace

class TestMqttDispatch : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void topicDecidesTheTarget_data();
    void topicDecidesTheTarget();
    void remoteConnectedNotifiesOnlyOnAChange_data();
    void remoteConnectedNotifiesOnlyOnAChange();
    void command_data();
    void command();
    void toggleStandbyCyclesTheDisplayOnce();
    void availableZonesAreHandedOver();
    void firstZoneMessageMakesTheZone();
    void zoneThatWasRemovedIsMadeAgain();
    void zoneListMakesNoZone();
    void zoneWithAnEmptyIdIsDropped();
    void zoneKeepsItsKeyWhenItsIdIsRewritten();
    void playerIsUpdatedAfterEveryZoneMessage();
    void randomBytesDoNoHarm();
    void randomTopicsReachKnownTargetsOnly();
    void damagedJsonDoesNoHarm();

private:
    void send(const QString &topic, const QByteArray &payload)
    {
        m_mqtt->processMessageApi(payload, QMqttTopicName(topic));
    }
    QStringList lines() { return m_log->take(QStringLiteral("mqtt.cpp")); }

    const quint32 m_seed = QRandomGenerator::system()->generate();
    std::unique_ptr<Mqtt> m_mqtt;
    std::unique_ptr<LogCapture> m_log;
};

void TestMqttDispatch::initTestCase()
{
    qInfo("seed of the random messages: %u", m_seed);
    m_mqtt = std::make_unique<Mqtt>();
    NavigationController::instance();
    for (const Mqtt *const mqtt : { m_mqtt.get(), Mqtt::instance() })
        waitForTheFailureOf(mqtt);
}

void TestMqttDispatch::init()
{
    m_log = std::make_unique<LogCapture>();
    RoonZones::instance()->updateAvailableZones("[]");
    m_log->clear();
}

void TestMqttDispatch::cleanup()
{
    QCoreApplication::processEvents();
    m_log->clear(); // what a test has to say about the log, it has said
    m_log.reset();
}

void TestMqttDispatch::topicDecidesTheTarget_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QString>("line"); // the one after the arrival; null: none
    const auto row = [](const QString &topic, const QString &line) {
        QTest::newRow(topic.isEmpty() ? "(empty)" : qUtf8Printable(topic)) << topic << line;
    };
    const auto unknown = [&row](const QString &topic) { row(topic, UnknownLine + topic); };
    const QString state = QStringLiteral("info: Mqtt::updateVelunorState() ");
    const QString settings = QStringLiteral("debug: Mqtt::updateSettings() ");
    const QString roon = QStringLiteral("warning: Mqtt::updateRoon() unknown property: ");
    const QString spotify = QStringLiteral("info: Mqtt::updateSpotify() ");
    const QString command = CommandLine + QLatin1Char('1');
    const QString available = AvailableLine + QLatin1Char('1');

    row("Velunor/State/v1/foo", state + "foo");
    row("Velunor/State/v1/foo/bar", state + "foo");
    row("Velunor/State/v1", state);
    row("Velunor/State", state);
    row("Velunor/State/v1/connected", state + "connected");
    row("x/State/y/z/Control", state + "z");
    row("/State//", state);
    row("Velunor/Settings/v2/foo", settings + "foo");
    row("Velunor/Settings/v2/connected/Control/Zones/available", settings + "connected");
    row("Velunor/Settings", settings);
    row("Velunor/Controller/remote_control/connected", QString());
    row("Velunor/Controller/remote_control/connected/Control/Roon", QString());
    row(Remote + "Control/command", command);
    row(Remote + "Control", command);
    row(Remote + "Control/Zones/available", command);
    row(Remote + "Control/Roon", command);
    row(Remote + "roon/Zones/available", available);
    row(Remote + "roon/Zones/available/more", available);
    row(Remote + "x/Zones/available", available);
    row(Remote + "spotify/Zones/available", available);
    row(Remote + "roon/Zones/z1/name", ZoneLine + Remote + "roon/Zones/z1/name");
    row(Remote + "roon/Zones/Available", ZoneLine + Remote + "roon/Zones/Available");
    row(Remote + "spotify/Zones/z1/name", ZoneLine + Remote + "spotify/Zones/z1/name");
    row(Remote + "roon/Zones/z1", ZoneLine + Remote + "roon/Zones/z1");
    row(Remote + "roon/Roon/foo", roon + "foo");
    row(Remote + "roon/Roon", roon);
    row(Remote + "spotify/Roon/foo", roon + "foo");
    row(Remote + "spotify/foo", spotify + "foo");
    row(Remote + "spotify", spotify);

    unknown(Remote + "roon/Zones"); // no zone id
    unknown(Remote + "connected");  // one level too deep
    unknown(Remote + "connected/x");
    unknown(Remote + "roon/roon/foo");
    unknown(Remote + "roon/zones/z1/name");
    unknown(Remote + "control/command");
    unknown(Remote + "Spotify/foo");
    unknown(Remote + "roon");
    unknown("Velunor/state/v1/foo");
    unknown("Velunor/STATE/v1/foo");
    unknown("Velunor/settings/v2/foo");
    unknown("State/v1/foo");
    unknown("Velunor");
    unknown("");
    unknown("/");
    unknown("//////////");
    unknown("Velunor/Überraschung");
}

void TestMqttDispatch::topicDecidesTheTarget()
{
    QFETCH(QString, topic);
    QFETCH(QString, line);
    Player::instance()->setRemoteConnected(false);
    m_log->clear();
    send(topic, "1");
    const QStringList found = lines();
    QCOMPARE(found.value(0), ReceivingLine + topic);
    QCOMPARE(found.value(1), line);
    QCOMPARE(Player::instance()->remoteConnected(), line.isNull());
}

void TestMqttDispatch::remoteConnectedNotifiesOnlyOnAChange_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<bool>("value");
    QTest::newRow("empty") << QByteArray("") << false;
    QTest::newRow("0") << QByteArray("0") << false;
    QTest::newRow("false") << QByteArray("false") << false;
    QTest::newRow("FaLsE") << QByteArray("FaLsE") << false;
    QTest::newRow("1") << QByteArray("1") << true;
    QTest::newRow("true") << QByteArray("true") << true;
    QTest::newRow("no") << QByteArray("no") << true;
    QTest::newRow("blank") << QByteArray(" ") << true;
}

void TestMqttDispatch::remoteConnectedNotifiesOnlyOnAChange()
{
    QFETCH(QByteArray, payload);
    QFETCH(bool, value);
    const QString topic = QStringLiteral("Velunor/Controller/remote_control/connected");
    for (const bool before : { false, true }) {
        Player::instance()->setRemoteConnected(before);
        SignalRecorder recorder(Player::instance());
        m_log->clear();
        send(topic, payload);
        send(topic, payload);
        QCOMPARE(Player::instance()->remoteConnected(), value);
        QCOMPARE(recorder.take(),
            before == value ? QStringList() : QStringList("remoteConnectionChanged"));
        QCOMPARE(lines(), QStringList({ ReceivingLine + topic, ReceivingLine + topic }));
    }
}

void TestMqttDispatch::command_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line"); // null: none
    const auto row = [](const char *name, const QByteArray &payload, const QString &line) {
        QTest::newRow(name) << payload << QString::fromUtf8(payload.constData()) << line;
    };
    row("toggle", R"({"command":"toggle_standby"})", ToggleLine);
    row("toggle among others", R"({"a":[1,{"b":null}],"command":"toggle_standby","c":1})",
        ToggleLine);
    row("capital letters", R"({"command":"TOGGLE_STANDBY"})", UnsupportedLine + "TOGGLE_STANDBY");
    row("echo of the player",
        R"({"command":"set_volume","how":"relative","value":-0.5,"zone_id":"1"})",
        UnsupportedLine + "set_volume");
    row("accented",
        "{\"command\":\"K\xc3\xbc"
        "che\"}",
        UnsupportedLine + QStringLiteral("Küche"));
    row("empty command", R"({"command":""})", UnsupportedLine);
    row("number", R"({"command":5})", UnsupportedLine);
    row("null", R"({"command":null})", UnsupportedLine);
    row("nested", R"({"command":{"command":"toggle_standby"}})", UnsupportedLine);
    row("no command", R"({"Command":"toggle_standby"})", QString());
    row("empty object", "{}", QString());
    row("array", R"([{"command":"toggle_standby"}])", QString());
    row("text", R"("toggle_standby")", QString());
    row("plain", "toggle_standby", QString());
    row("cut off", R"({"command":"toggle_standby")", QString());
    row("empty", "", QString());
    row("zero byte", QByteArray("{\"command\":\0\"toggle_standby\"}", 28), QString());
    row("after a zero byte", QByteArray("\0{\"command\":\"toggle_standby\"}", 29), QString());
}

void TestMqttDispatch::command()
{
    QFETCH(QByteArray, payload);
    QFETCH(QString, text);
    QFETCH(QString, line);
    send(Remote + "Control/command", payload);
    QStringList expected { ReceivingLine + Remote + "Control/command", CommandLine + text };
    if (!line.isNull())
        expected.append(line);
    QCOMPARE(lines(), expected);
    const QStringList cycles = m_log->take(QStringLiteral("navigationcontroller.cpp"))
                                   .filter(QStringLiteral("cycleDisplayOutput"));
    QCOMPARE(cycles.size(), line == ToggleLine ? 1 : 0);
}

void TestMqttDispatch::toggleStandbyCyclesTheDisplayOnce()
{
    NavigationController *const navigation = NavigationController::instance();
    navigation->navigate(NavigationController::PlayerScreen);
    SignalRecorder recorder(navigation);
    const QByteArray toggle = R"({"command":"toggle_standby"})";
    send(Remote + "Control/command", toggle);
    QCOMPARE(recorder.take(), QStringList("setScreen Clock"));
    send(Remote + "Control/command", toggle);
    QCOMPARE(recorder.take(), QStringList("setScreen ScreenSaver"));
}

void TestMqttDispatch::availableZonesAreHandedOver()
{
    SignalRecorder recorder(RoonZones::instance());
    const QByteArray list = "[{\"id\":\"z1\",\"name\":\"K\xc3\xbc"
                            "che\"}]";
    send(Remote + "roon/Zones/available", list);
    QCOMPARE(lines(),
        QStringList({ ReceivingLine + Remote + "roon/Zones/available",
            AvailableLine + QString::fromUtf8(list) }));
    QCOMPARE(recorder.take(), QStringList("zonesChanged"));
    QCOMPARE(RoonZones::instance()->availableNames(), QStringList(QStringLiteral("Küche")));
    // The player waits for the next message about its zone.
    QVERIFY(m_log->take(QStringLiteral("player.cpp")).isEmpty());
}

void TestMqttDispatch::firstZoneMessageMakesTheZone()
{
    const QString topic = Remote + "roon/Zones/Zähler 1/nowPlaying/song";
    send(topic, "Song");
    QCOMPARE(lines(),
        QStringList({ ReceivingLine + topic, ZoneLine + topic, NoZoneLine, AddedLine,
            "debug: Mqtt::updateZone() setting property nowPlaying_song to value: Song" }));
    const RoonZone *const zone = RoonZones::instance()->find(QStringLiteral("Zähler 1"));
    QVERIFY(zone);
    QCOMPARE(zone->id(), QStringLiteral("Zähler 1"));
    QCOMPARE(zone->nowPlayingSong(), QStringLiteral("Song"));

    send(Remote + "roon/Zones/Zähler 1/state", "playing");
    QCOMPARE(lines().mid(2),
        QStringList({ "debug: Mqtt::updateZone() setting property state to value: playing" }));
    QCOMPARE(RoonZones::instance()->find(QStringLiteral("Zähler 1")), zone);

    // A message without a known key makes a zone, too.
    send(Remote + "roon/Zones/z2/foo", "1");
    QVERIFY(RoonZones::instance()->contains(QStringLiteral("z2")));
    QCOMPARE(lines().last(), QStringLiteral("warning: Mqtt::updateZone() unknown property: foo"));
}

void TestMqttDispatch::zoneThatWasRemovedIsMadeAgain()
{
    send(Remote + "roon/Zones/z1/nowPlaying/song", "Song");
    send(Remote + "roon/Zones/available", "[]");
    QVERIFY(!RoonZones::instance()->contains(QStringLiteral("z1")));
    lines();
    send(Remote + "roon/Zones/z1/nowPlaying/artist", "Artist");
    QCOMPARE(lines().mid(2, 2), QStringList({ NoZoneLine, AddedLine }));
    const RoonZone *const zone = RoonZones::instance()->find(QStringLiteral("z1"));
    QCOMPARE(zone->nowPlayingArtist(), QStringLiteral("Artist"));
    QCOMPARE(zone->nowPlayingSong(), QString());
}

void TestMqttDispatch::zoneListMakesNoZone()
{
    send(Remote + "roon/Zones/available", R"([{"id":"z1","name":"Kitchen"}])");
    QVERIFY(!RoonZones::instance()->contains(QStringLiteral("z1")));
}

void TestMqttDispatch::zoneWithAnEmptyIdIsDropped()
{
    const QString topic = Remote + "roon/Zones//name";
    SignalRecorder player(Player::instance());
    send(topic, "Kitchen");
    QCOMPARE(lines(),
        QStringList({ ReceivingLine + topic, ZoneLine + topic, NoZoneLine, NotAddedLine }));
    QVERIFY(!RoonZones::instance()->contains(QString()));
    QVERIFY(m_log->take(QStringLiteral("player.cpp")).isEmpty());
    QCOMPARE(player.take(), QStringList());
}

void TestMqttDispatch::zoneKeepsItsKeyWhenItsIdIsRewritten()
{
    send(Remote + "roon/Zones/z1/id", "z9");
    const RoonZone *const zone = RoonZones::instance()->find(QStringLiteral("z1"));
    QVERIFY(zone);
    QCOMPARE(zone->id(), QStringLiteral("z9"));
    QVERIFY(!RoonZones::instance()->contains(QStringLiteral("z9")));
    send(Remote + "roon/Zones/available", R"([{"id":"z9","name":"Kitchen"}])");
    QVERIFY(!RoonZones::instance()->contains(QStringLiteral("z1")));
}

void TestMqttDispatch::playerIsUpdatedAfterEveryZoneMessage()
{
    Player *const player = Player::instance();
    player->setWantedZone(QStringLiteral("Kitchen"));
    send(Remote + "roon/Zones/available",
        R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Bath"}])");
    send(Remote + "roon/Zones/z1/name", "Kitchen");
    QCOMPARE(player->zone(), QStringLiteral("Kitchen"));
    send(Remote + "roon/Zones/z1/nowPlaying/song", "Song");
    QCOMPARE(player->song(), QStringLiteral("Song"));
    m_log->clear();
    const QString line = PlayerLine + "Kitchen with ID z1";
    // Also when nothing was written, and after a message about another zone.
    for (const char *rest : { "z1/foo", "z1/outputs", "z2/state" }) {
        send(Remote + "roon/Zones/" + rest, "1");
        QCOMPARE(m_log->count(line), 1);
        m_log->clear();
    }
}

void TestMqttDispatch::randomBytesDoNoHarm()
{
    QRandomGenerator random(m_seed);
    const auto bytes = [&random](int longest) {
        QByteArray result(random.bounded(longest + 1), Qt::Uninitialized);
        for (char &byte : result)
            byte = static_cast<char>(random.bounded(256));
        return result;
    };
    for (int i = 0; i < 5000; ++i) {
        const QString topic = QString::fromLatin1(bytes(60)); // every character up to 255
        send(topic, bytes(200));
        // Hardly any of these names a target; whatever arrives is logged first.
        QCOMPARE(lines().value(0), ReceivingLine + topic);
    }
    QCOMPARE(RoonZones::instance()->availableNames(), QStringList());
}

void TestMqttDispatch::randomTopicsReachKnownTargetsOnly()
{
    QRandomGenerator random(m_seed);
    const QStringList words { "Velunor", "State", "Settings", "Controller", "remote_control", "v4",
        "connected", "Control", "command", "roon", "Zones", "available", "Roon", "spotify", "",
        "z1", "z2", "nowPlaying", "settings", "volume", "song", "length", "value", "step", "name",
        "state", "outputs", "id", "coreDetected", "serverUrl", "UpdateInstalling",
        "touchscreen_blankscreen", "touchscreen_clockcolor", "ü" };
    const QList<QByteArray> payloads { "", "0", "true", "42", "-1e39", "nan", "[]", "{}",
        R"([{"id":"z1","name":"Hugo2X"}])", R"({"command":"toggle_standby"})",
        R"([{"display_name":"x"}])", QByteArray(3, '\0'), "\xff\xff" };
    SignalRecorder roon(Roon::instance());
    SignalRecorder state(VelunorState::instance());
    SignalRecorder settings(Settings::instance());
    SignalRecorder zones(RoonZones::instance());
    for (int i = 0; i < 20000; ++i) {
        // Half of them begin as the real ones do.
        QStringList levels;
        if (random.bounded(2))
            levels = (Remote + words.at(random.bounded(words.size()))).split(QLatin1Char('/'));
        const int more = random.bounded(7);
        for (int level = 0; level < more; ++level)
            levels.append(words.at(random.bounded(words.size())));
        send(levels.join(QLatin1Char('/')), payloads.at(random.bounded(payloads.size())));

        const QStringList found = lines();
        const bool isState = levels.value(1) == QLatin1String("State");
        const bool isSettings = !isState && levels.value(1) == QLatin1String("Settings");
        const bool isRoon = levels.value(5) == QLatin1String("Roon");
        const bool isZone = levels.value(5) == QLatin1String("Zones");
        const QByteArray what = QByteArray("seed ") + QByteArray::number(m_seed) + ", message "
            + QByteArray::number(i) + ", " + levels.join(QLatin1Char('/')).toUtf8();
        QVERIFY2(state.take().isEmpty() || isState, what);
        QVERIFY2(settings.take().isEmpty() || isSettings, what);
        QVERIFY2(roon.take().isEmpty() || isRoon, what);
        QVERIFY2(zones.take().isEmpty() || isZone, what);
        QVERIFY2(found.size() == 1 || !found.filter(UnknownLine).isEmpty() || isState || isSettings
                || isRoon || isZone || levels.value(4) == QLatin1String("Control")
                || levels.value(4) == QLatin1String("spotify"),
            what);
        if (i % 100 == 0)
            QCoreApplication::processEvents();
        m_log->clear();
    }
}

void TestMqttDispatch::damagedJsonDoesNoHarm()
{
    QRandomGenerator random(m_seed);
    const QMap<QString, QByteArray> messages {
        { "roon/Zones/available", R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Bath"}])" },
        { "roon/Zones/z1/outputs",
            R"([{"display_name":"Kitchen","volume":{"value":1.5e3}},{"display_name":"K\u00fcche"}])" },
        { "Control/command", R"({"command":"toggle_standby","zones":[1,2,{"x":null}]})" },
    };
    for (auto message = messages.begin(); message != messages.end(); ++message) {
        for (int length = 0; length <= message->size(); ++length)
            send(Remote + message.key(), message->left(length));
        for (int i = 0; i < 2000; ++i) {
            QByteArray payload = message.value();
            const int changes = 1 + random.bounded(5);
            for (int change = 0; change < changes; ++change)
                payload[random.bounded(payload.size())] = static_cast<char>(random.bounded(256));
            send(Remote + message.key(), payload);
            m_log->clear();
        }
        for (const QByteArray &deep : { QByteArray(100000, '['), QByteArray(100000, '{') })
            send(Remote + message.key(), deep);
        m_log->clear();
    }
    // And a sound list is understood afterwards.
    send(Remote + "roon/Zones/available", R"([{"id":"z1","name":"Kitchen"}])");
    QVERIFY2(RoonZones::instance()->availableNames() == QStringList("Kitchen"),
        QByteArray("seed ") + QByteArray::number(m_seed));
}

QTEST_GUILESS_MAIN(TestMqttDispatch)
#include "tst_mqtt_dispatch.moc"
