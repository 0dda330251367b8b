// SPDX-License-Identifier: GPL-3.0-or-later
#include "logcapture.h"
#include "mqtt.h"
#include "navigationcontroller.h"
#include "player.h"
#include "roonzones.h"
#include "signalrecorder.h"
#include "testkit/services/apiserver.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTest>
#include <QTextCodec>

#include <memory>

namespace {

const QString CommandTopic = QStringLiteral("Velunor/Controller/remote_control/v4/Control/command");
const QString ZoneTopic = QStringLiteral("Velunor/touch_ui/v3/Display/zone");
const QString FenceTopic = QStringLiteral("test/fence");

} // namespace

class TestPlayerCommands : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void commandsByteForByte_data();
    void commandsByteForByte();
    void togglesStartFromTheLastKnownState_data();
    void togglesStartFromTheLastKnownState();
    void loopModesGoRound_data();
    void loopModesGoRound();
    void volumesHaveOneDecimal_data();
    void volumesHaveOneDecimal();
    void sameAbsoluteVolumeIsSentOnce();
    void otherCommandsAreAlwaysSent();
    void commandsChangeNothingHere();
    void commandsWithoutAZoneAreDropped_data();
    void commandsWithoutAZoneAreDropped();
    void zoneIdGoesInAsItIs_data();
    void zoneIdGoesInAsItIs();
    void commandsArePublishedAtQosOneWithoutRetain();
    void textsLeaveInTheLocalesEncoding();

    void selectedZoneIsUpdatedAndAnnounced();
    void selectedZoneIsAnnouncedBetweenItsSignals();
    void selectingTheSameZoneAnnouncesItAgain();
    void zoneIsAnnouncedRetained();
    void connectionAnnouncesTheZone();
    void playerThatComesLaterAnnouncesTheZone();
    void installUpdateAsksTheWebService();

private:
    QStringList lines() { return m_log->take(QStringLiteral("player.cpp")); }
    QList<QByteArray> sent(const QString &topic = CommandTopic);
    void verifyEachPublish(const QString &topic, const QString &flags) const;
    void call(const QByteArray &slot)
    {
        QVERIFY(QMetaObject::invokeMethod(m_player.get(), slot.constData()));
    }

    std::unique_ptr<Broker> m_broker;
    std::unique_ptr<BrokerClient> m_services;
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<Player> m_player;
    std::unique_ptr<SignalRecorder> m_signals;
    QList<QByteArray> m_firstAnnouncements;
};

void TestPlayerCommands::initTestCase()
{
    m_broker = std::make_unique<Broker>();
    QVERIFY(m_broker->start());
    m_services = std::make_unique<BrokerClient>();
    QVERIFY(m_services->connectToBroker());
    // Made before the connection is up, as the program does it.
    qunsetenv("VELUNOR_TOUCHUI_CONTROL_ZONE");
    NavigationController::instance();
    QVERIFY(!Mqtt::instance()->isConnected());
    QVERIFY(waitUntil([] { return Mqtt::instance()->isConnected(); }));
    m_firstAnnouncements = sent(ZoneTopic);
}

void TestPlayerCommands::init()
{
    m_log = std::make_unique<LogCapture>();
    RoonZones::instance()->updateAvailableZones(R"([{"id":"z1","name":"Kitchen"}])");
    qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", "Kitchen");
    m_player = std::make_unique<Player>();
    m_signals = std::make_unique<SignalRecorder>(m_player.get());
    sent();
    // The cache outlives a test: an absolute volume that no test uses takes its place.
    static int unused = 1000;
    m_player->movedVolumeSlider(static_cast<float>(++unused));
    sent();
    m_log->clear();
}

void TestPlayerCommands::cleanup()
{
    m_signals.reset();
    m_player.reset();
    QCoreApplication::processEvents();
    m_log->clear(); // what a test has to say about the log, it has said
    m_log.reset();
}

/** That the program publishes on @p topic, and with the flags @p flags of the broker's log only. */
void TestPlayerCommands::verifyEachPublish(const QString &topic, const QString &flags) const
{
    const QString published = QStringLiteral("^Received PUBLISH from \\S+ \\(%1, m\\d+, '") + topic
        + QStringLiteral("'");
    const int wanted = m_broker->lines(QRegularExpression(published.arg(flags))).size();
    QVERIFY(wanted > 0);
    QCOMPARE(wanted, m_broker->lines(QRegularExpression(published.arg("d., q., r."))).size());
}

/** What has reached the broker on @p topic since the last call. */
QList<QByteArray> TestPlayerCommands::sent(const QString &topic)
{
    static int fences = 0; // each is another, so that none is taken for one before it
    const QByteArray fence = QByteArray::number(++fences);
    Mqtt::instance()->publish(FenceTopic, fence, false, 1);
    if (!m_services->waitFor(FenceTopic, fence))
        QTest::qFail("the broker does not answer", __FILE__, __LINE__);
    const QList<QByteArray> payloads = m_services->payloads(topic);
    m_services->clear();
    return payloads;
}

void TestPlayerCommands::commandsByteForByte_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::addColumn<QByteArray>("payload");
    QTest::addColumn<QString>("line"); // null: none
    const auto row = [](const char *slot, const char *payload, const QString &line = QString()) {
        QTest::newRow(slot) << QByteArray(slot) << QByteArray(payload) << line;
    };
    row("playPause", R"({"command":"playpause","zone_id":"z1"})");
    row("prev", R"({"command":"previous","zone_id":"z1"})");
    row("next", R"({"command":"next","zone_id":"z1"})");
    row("clickedRadioButton", R"({"command":"set_radio","radio":true,"zone_id":"z1"})",
        "debug: Player::clickedRadioButton() true");
    row("clickedShuffleButton", R"({"command":"set_shuffle","shuffle":true,"zone_id":"z1"})",
        "debug: Player::clickedShuffleButton() true");
    row("clickedLoopButton", R"({"command":"set_loopmode","loop":"disabled","zone_id":"z1"})",
        "debug: Player::clickedLoopButton() disabled");
    row("commandVolumeDown",
        R"({"command":"set_volume","how":"relative","value":0.0,"zone_id":"z1"})",
        "debug: Player::commandVolumeDown()");
    row("commandVolumeUp",
        R"({"command":"set_volume","how":"relative","value":0.0,"zone_id":"z1"})",
        "debug: Player::commandVolumeUp()");
}

void TestPlayerCommands::commandsByteForByte()
{
    QFETCH(QByteArray, slot);
    QFETCH(QByteArray, payload);
    QFETCH(QString, line);
    call(slot);
    QCOMPARE(lines(), line.isNull() ? QStringList() : QStringList(line));
    QCOMPARE(sent(), QList<QByteArray>({ payload }));
}

void TestPlayerCommands::togglesStartFromTheLastKnownState_data()
{
    QTest::addColumn<bool>("isOn");
    QTest::newRow("off") << false;
    QTest::newRow("on") << true;
}

void TestPlayerCommands::togglesStartFromTheLastKnownState()
{
    QFETCH(bool, isOn);
    m_player->setAutoRadio(isOn);
    m_player->setShuffle(isOn);
    const QByteArray asked = isOn ? "false" : "true";
    const QByteArray radio = R"({"command":"set_radio","radio":)" + asked + R"(,"zone_id":"z1"})";
    const QByteArray shuffle
        = R"({"command":"set_shuffle","shuffle":)" + asked + R"(,"zone_id":"z1"})";
    // Two quick touches ask for the same.
    for (int touch = 0; touch < 2; ++touch)
        m_player->clickedRadioButton();
    for (int touch = 0; touch < 2; ++touch)
        m_player->clickedShuffleButton();
    QCOMPARE(sent(), QList<QByteArray>({ radio, radio, shuffle, shuffle }));
    const QString radioLine = QStringLiteral("debug: Player::clickedRadioButton() ") + asked;
    const QString shuffleLine = QStringLiteral("debug: Player::clickedShuffleButton() ") + asked;
    QCOMPARE(lines(), QStringList({ radioLine, radioLine, shuffleLine, shuffleLine }));
}

void TestPlayerCommands::loopModesGoRound_data()
{
    QTest::addColumn<QString>("present");
    QTest::addColumn<QString>("next");
    QTest::newRow("disabled") << "disabled"
                              << "loop";
    QTest::newRow("loop") << "loop"
                          << "loop_one";
    QTest::newRow("loop_one") << "loop_one"
                              << "disabled";
    QTest::newRow("empty") << ""
                           << "disabled";
    QTest::newRow("unknown") << "shuffle"
                             << "disabled";
    QTest::newRow("other case") << "Loop"
                                << "disabled";
}

void TestPlayerCommands::loopModesGoRound()
{
    QFETCH(QString, present);
    QFETCH(QString, next);
    m_player->setLoop(present);
    m_player->clickedLoopButton();
    QCOMPARE(lines(), QStringList(QStringLiteral("debug: Player::clickedLoopButton() ") + next));
    QCOMPARE(sent(),
        QList<QByteArray>({ R"({"command":"set_loopmode","loop":")" + next.toLatin1()
            + R"(","zone_id":"z1"})" }));
}

void TestPlayerCommands::volumesHaveOneDecimal_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QByteArray>("up");
    QTest::addColumn<QByteArray>("down");
    QTest::addColumn<QString>("text");
    const auto row = [](float value, const char *up, const char *down, const char *text) {
        QTest::newRow(text) << value << QByteArray(up) << QByteArray(down) << text;
    };
    row(5.0f, "5.0", "-5.0", "5");
    row(0.5f, "0.5", "-0.5", "0.5");
    row(-10.0f, "-10.0", "10.0", "-10");
    row(33.25f, "33.3", "-33.3", "33.25"); // a tie: this is how Qt rounds it
    row(33.75f, "33.8", "-33.8", "33.75");
    row(0.04f, "0.0", "-0.0", "0.04");
    row(99.96f, "100.0", "-100.0", "99.96");
    row(12345678.0f, "12345678.0", "-12345678.0", "12345678");
}

void TestPlayerCommands::volumesHaveOneDecimal()
{
    QFETCH(float, value);
    QFETCH(QByteArray, up);
    QFETCH(QByteArray, down);
    QFETCH(QString, text);
    m_player->setVolumeStep(value);
    m_log->clear();
    m_player->movedVolumeSlider(value);
    m_player->commandVolumeUp();
    m_player->commandVolumeDown();
    const QByteArray relative = R"({"command":"set_volume","how":"relative","value":)";
    const QByteArray absolute = R"({"command":"set_volume","how":"absolute","value":)";
    const QByteArray end = R"(,"zone_id":"z1"})";
    QCOMPARE(sent(),
        QList<QByteArray>({ absolute + up + end, relative + up + end, relative + down + end }));
    const QStringList found = lines();
    QCOMPARE(found.size(), 3);
    bool isNumber = false;
    const QString line = QStringLiteral("debug: Player::movedVolumeSlider() ");
    QVERIFY(found.at(0).startsWith(line));
    QCOMPARE(found.at(0).mid(line.size()).toFloat(&isNumber), text.size() > 6 ? 1.23457e7f : value);
    QVERIFY(isNumber);
    QCOMPARE(found.mid(1),
        QStringList({ "debug: Player::commandVolumeUp()", "debug: Player::commandVolumeDown()" }));
}

void TestPlayerCommands::sameAbsoluteVolumeIsSentOnce()
{
    const QByteArray fifty
        = R"({"command":"set_volume","how":"absolute","value":50.0,"zone_id":"z1"})";
    m_player->movedVolumeSlider(50.0f);
    m_player->movedVolumeSlider(50.0f);
    m_player->movedVolumeSlider(50.04f); // the same to one decimal
    QCOMPARE(sent(), QList<QByteArray>({ fifty }));
    QCOMPARE(lines().size(), 3);

    // What is sent in between does not count.
    m_player->commandVolumeUp();
    m_player->playPause();
    sent();
    m_player->movedVolumeSlider(50.0f);
    QCOMPARE(sent(), QList<QByteArray>());
    m_player->movedVolumeSlider(51.0f);
    m_player->movedVolumeSlider(50.0f);
    QCOMPARE(sent().size(), 2);
}

void TestPlayerCommands::otherCommandsAreAlwaysSent()
{
    const QList<QByteArray> slotNames { "playPause", "prev", "next", "clickedRadioButton",
        "clickedShuffleButton", "clickedLoopButton", "commandVolumeDown", "commandVolumeUp" };
    for (const QByteArray &slot : slotNames) {
        call(slot);
        call(slot);
        const QList<QByteArray> payloads = sent();
        QCOMPARE(payloads.size(), 2);
        QCOMPARE(payloads.at(0), payloads.at(1));
    }
}

void TestPlayerCommands::commandsChangeNothingHere()
{
    m_player->movedVolumeSlider(20.0f);
    for (const char *slot : { "playPause", "prev", "next", "clickedRadioButton",
             "clickedShuffleButton", "clickedLoopButton", "commandVolumeDown", "commandVolumeUp" })
        call(slot);
    QCOMPARE(m_player->volume(), 0.0f);
    QVERIFY(!m_player->autoRadio());
    QVERIFY(!m_player->shuffle());
    QCOMPARE(m_player->loop(), QString());
    QCOMPARE(m_signals->take(), QStringList());
}

void TestPlayerCommands::commandsWithoutAZoneAreDropped_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("no zones") << QByteArray("[]");
    QTest::newRow("another zone") << QByteArray(R"([{"id":"z2","name":"Bath"}])");
    QTest::newRow("zone with an empty id") << QByteArray(R"([{"id":"","name":"Kitchen"}])");
}

void TestPlayerCommands::commandsWithoutAZoneAreDropped()
{
    QFETCH(QByteArray, list);
    RoonZones::instance()->updateAvailableZones(list);
    m_log->clear();
    m_player->movedVolumeSlider(20.0f);
    for (const char *slot : { "playPause", "prev", "next", "clickedRadioButton",
             "clickedShuffleButton", "clickedLoopButton", "commandVolumeDown", "commandVolumeUp" })
        call(slot);
    QCOMPARE(m_log->take(), QStringList());
    QCOMPARE(sent(), QList<QByteArray>());
}

void TestPlayerCommands::zoneIdGoesInAsItIs_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("quote") << "a\"b";
    QTest::newRow("backslash") << "a\\b";
    QTest::newRow("place marker") << "%1%2";
    QTest::newRow("braces") << "{}";
    QTest::newRow("accented") << "Zähler";
}

void TestPlayerCommands::zoneIdGoesInAsItIs()
{
    QFETCH(QString, id);
    const QJsonArray list { QJsonObject { { "id", id }, { "name", "Kitchen" } } };
    RoonZones::instance()->updateAvailableZones(QJsonDocument(list).toJson());
    m_player->playPause();
    QCOMPARE(sent(),
        QList<QByteArray>({ R"({"command":"playpause","zone_id":")" + id.toUtf8() + R"("})" }));
}

void TestPlayerCommands::commandsArePublishedAtQosOneWithoutRetain()
{
    m_player->playPause();
    sent();
    verifyEachPublish(CommandTopic, "d0, q1, r0");
}

void TestPlayerCommands::textsLeaveInTheLocalesEncoding()
{
    const QString zone = QStringLiteral("Küche");
    const QJsonArray list { QJsonObject { { "id", "Zähler" }, { "name", zone } } };
    RoonZones::instance()->updateAvailableZones(QJsonDocument(list).toJson());
    sent();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    m_player->selectZone(zone);
    m_player->playPause();
    QTextCodec::setCodecForLocale(nullptr); // the system's own again
    m_player->selectZone(zone);
    Mqtt::instance()->publish(FenceTopic, "here", false, 1);
    QVERIFY(m_services->waitFor(FenceTopic, "here"));
    QCOMPARE(m_services->payloads(ZoneTopic),
        QList<QByteArray>({ "K\xfc"
                            "che",
            "K\xc3\xbc"
            "che" }));
    QCOMPARE(m_services->payloads(CommandTopic),
        QList<QByteArray>({ "{\"command\":\"playpause\",\"zone_id\":\"Z\xe4hler\"}" }));
}

void TestPlayerCommands::selectedZoneIsUpdatedAndAnnounced()
{
    RoonZones::instance()->updateAvailableZones(
        R"([{"id":"z1","name":"Kitchen"},{"id":"z2","name":"Küche"}])");
    auto *const zone = new RoonZone(QStringLiteral("z2"));
    QVERIFY(RoonZones::instance()->add(zone));
    zone->setName(QStringLiteral("Küche"));
    zone->setState(QString());
    sent(ZoneTopic);
    m_log->clear();
    m_player->selectZone(QStringLiteral("Küche"));
    QCOMPARE(lines(),
        QStringList({ QStringLiteral("info: Player::selectZone() Küche"),
            QStringLiteral("debug: Player::update() looking for zone Küche with ID z2") }));
    QCOMPARE(m_player->wantedZone(), QStringLiteral("Küche"));
    QCOMPARE(m_player->zone(), QStringLiteral("Küche"));
    QCOMPARE(m_signals->take(), QStringList({ "zoneChanged", "wantedZoneChanged" }));
    QCOMPARE(sent(ZoneTopic),
        QList<QByteArray>({ "K\xc3\xbc"
                            "che" }));
}

void TestPlayerCommands::selectedZoneIsAnnouncedBetweenItsSignals()
{
    RoonZones::instance()->updateAvailableZones(R"([{"id":"z3","name":"Hall"}])");
    auto *const zone = new RoonZone(QStringLiteral("z3"));
    QVERIFY(RoonZones::instance()->add(zone));
    zone->setName(QStringLiteral("Hall"));
    const auto publish
        = [](const QByteArray &text) { Mqtt::instance()->publish(ZoneTopic, text, true, 1); };
    connect(m_player.get(), &Player::zoneChanged, this, [=] { publish("zoneChanged"); });
    connect(
        m_player.get(), &Player::wantedZoneChanged, this, [=] { publish("wantedZoneChanged"); });
    sent(ZoneTopic);
    m_player->selectZone(QStringLiteral("Hall"));
    QCOMPARE(sent(ZoneTopic), QList<QByteArray>({ "zoneChanged", "Hall", "wantedZoneChanged" }));
}

void TestPlayerCommands::selectingTheSameZoneAnnouncesItAgain()
{
    sent(ZoneTopic);
    m_log->clear();
    for (int touch = 0; touch < 2; ++touch)
        m_player->selectZone(QStringLiteral("Kitchen"));
    QCOMPARE(m_signals->take(), QStringList({ "wantedZoneChanged", "wantedZoneChanged" }));
    QCOMPARE(m_log->count(QStringLiteral("info: Player::selectZone() Kitchen")), 2);
    QCOMPARE(
        m_log->count(QStringLiteral("debug: Player::update() looking for zone Kitchen with ID z1")),
        2);
    QCOMPARE(sent(ZoneTopic), QList<QByteArray>({ "Kitchen", "Kitchen" }));

    // One that is not there is announced all the same.
    m_player->selectZone(QStringLiteral("Attic"));
    QCOMPARE(m_signals->take(), QStringList("wantedZoneChanged"));
    QCOMPARE(sent(ZoneTopic), QList<QByteArray>({ "Attic" }));
}

void TestPlayerCommands::zoneIsAnnouncedRetained()
{
    m_player->selectZone(QStringLiteral("Kitchen"));
    sent();
    verifyEachPublish(ZoneTopic, "d0, q1, r1");
}

void TestPlayerCommands::connectionAnnouncesTheZone()
{
    // The instance was there before the connection was: the fixed name, once.
    QCOMPARE(m_firstAnnouncements, QList<QByteArray>({ "Hugo2X" }));
    sent(ZoneTopic);
    m_log->clear();
    m_player->mqttConnected();
    QCOMPARE(m_log->take(), QStringList(QStringLiteral("info: Player::mqttConnected()")));
    QCOMPARE(sent(ZoneTopic), QList<QByteArray>({ "Kitchen" }));
    QCOMPARE(m_signals->take(), QStringList());

    emit Mqtt::instance()->connected(); // to the instance and to this one
    QCOMPARE(sent(ZoneTopic), QList<QByteArray>({ "Hugo2X", "Kitchen" }));
}

void TestPlayerCommands::playerThatComesLaterAnnouncesTheZone()
{
    sent(ZoneTopic);
    qputenv("VELUNOR_TOUCHUI_CONTROL_ZONE", "Attic");
    const Player player;
    QCOMPARE(sent(ZoneTopic), QList<QByteArray>({ "Attic" }));
}

void TestPlayerCommands::installUpdateAsksTheWebService()
{
    ApiServer server;
    QVERIFY(server.start());
    m_player->installUpdate();
    QCOMPARE(m_log->take(QStringLiteral("player.cpp")),
        QStringList(QStringLiteral("info: Player::installUpdate()")));
    QTRY_COMPARE(server.requests().size(), 1);
    QCOMPARE(server.requests().first().method, QByteArray("POST"));
    QCOMPARE(server.requests().first().target, QByteArray("/api/install_update_v1"));
    QCOMPARE(server.requests().first().body, QByteArray());
    QCOMPARE(sent(), QList<QByteArray>());
    QCOMPARE(m_signals->take(), QStringList());
}

QTEST_GUILESS_MAIN(TestPlayerCommands)
#include "tst_player_commands.moc"
