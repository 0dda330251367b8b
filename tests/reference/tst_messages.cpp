// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/services/mqttreference.h"
#include "testkit/waiting.h"

#include <QJsonDocument>
#include <QMqttClient>
#include <QRegularExpression>
#include <QSet>

#include <memory>

namespace {

const MqttReference &reference()
{
    return MqttReference::instance();
}

QJsonObject parsed(const QByteArray &json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

/** The real program does with each message what docs/mqtt-api.yaml says of it. */
class TestMessages : public QObject {
    Q_OBJECT

private slots:
    void storedMessages_data();
    void storedMessages();
    void cleanupTestCase();

    void theListOfZones();
    void anEmptyMessageIsAMessage();
    void aPointMakesNoWholeNumber();
    void theOutputsOfAZone();
    void theConnectedFlagIsIgnored();
    void whatIsNotListedChangesNothing();
    void standby();
    void aRetainedCommandIsNotObeyed();
    void commandsAreSentAsDescribed();
    void reportsAreSentAsDescribed();

    void theBrokerObjectsToWhatIsNotDescribed();

private:
    std::unique_ptr<Appliance> m_appliance; // the one for all stored messages
};

namespace {

/** An appliance on which nothing has been published yet. */
std::unique_ptr<Appliance> emptyAppliance()
{
    auto appliance = std::make_unique<Appliance>();
    const bool begun = appliance->broker.start() && appliance->services.connectToBroker()
        && appliance->program.startAndWait()
        && appliance->services.waitFor(Topics::display() + "zone", "Kitchen");
    // These two objects come with the first message for them, which here changes nothing.
    appliance->publishZone("name", "unknown");
    appliance->services.publish(reference().entry("spotifyState").topic, "", true);
    return begun && appliance->handled() ? std::move(appliance) : nullptr;
}

/** What was published on that topic as the document says, by the broker's word. */
bool publishedAsDescribed(const Broker &broker, const MqttReference::Entry &entry)
{
    return !broker
                .lines(QRegularExpression(
                    QString("^Received PUBLISH from \\S+ \\(d0, q%1, r%2, m\\d+, '%3', ")
                        .arg(entry.qos)
                        .arg(entry.retain ? 1 : 0)
                        .arg(QRegularExpression::escape(entry.topic))))
                .isEmpty();
}

} // namespace

void TestMessages::storedMessages_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < reference().entries().size(); ++i) {
        if (!reference().entries().at(i).object.isEmpty())
            QTest::newRow(qPrintable(reference().entries().at(i).message)) << i;
    }
}

void TestMessages::storedMessages()
{
    QFETCH(int, index);
    const MqttReference::Entry &entry = reference().entries().at(index);
    if (!m_appliance)
        m_appliance = emptyAppliance();
    QVERIFY(m_appliance);
    const auto stored = [&] {
        return m_appliance->program.probe().objectProperty(
            Probe::Target::type(entry.object), entry.property);
    };
    const auto receive = [&](const QByteArray &payload) {
        m_appliance->services.publish(entry.topicOf("z1"), payload, entry.retain);
        return m_appliance->handled();
    };

    QJsonValue before = stored();
    QCOMPARE(before,
        entry.initial == "{zoneId}" ? QJsonValue("z1") : entry.initial); // the topic's own
    for (int i = 0; i < entry.sent.size(); ++i) {
        QVERIFY(receive(entry.sent.at(i)));
        const QJsonValue expected
            = entry.becomes.isUndefined() ? entry.examples.at(i) : entry.becomes;
        QCOMPARE(stored(), expected);
        QVERIFY2(expected != before, "the example changes nothing, and so shows nothing");
        before = expected;
    }

    // An odd payload that has an effect is seen to have it; one that counts as what is there
    // already, after something else was there.
    if (entry.oddBecomes == before) {
        QVERIFY(receive(entry.type == "bool" ? (before.toBool() ? "false" : "true") : "else"));
        QVERIFY(stored() != before);
    }
    QVERIFY(receive(entry.oddPayload));
    QCOMPARE(stored(), entry.oddBecomes);
}

void TestMessages::cleanupTestCase()
{
    m_appliance.reset();
}

void TestMessages::theListOfZones()
{
    m_appliance.reset();
    const MqttReference::Entry &entry = reference().entry("availableZones");
    Appliance appliance;
    QVERIFY(appliance.start());
    const auto names = [&] {
        return appliance.program.probe().objectProperty(Probe::Target::type("RoonZones"), "zones");
    };
    QCOMPARE(names(), QJsonValue(QJsonArray { "Kitchen" }));
    appliance.publishZones(entry.sent.first());
    QVERIFY(appliance.handled());
    const QJsonArray zones = entry.examples.first().toArray();
    QJsonArray described;
    for (const QJsonValue &zone : zones)
        described.prepend(zone["name"]); // sorted by name, which is the reverse here
    QCOMPARE(names(), QJsonValue(described));

    // The list changes no page, nor does a message of a zone that is not found.
    appliance.publishZones(entry.oddPayload);
    appliance.publishZone("nowPlaying/song", "Somewhere Else");
    QVERIFY(appliance.handled());
    QVERIFY(appliance.waitForPage(PageNames::Player));
    appliance.publishCore("coreDetected", "true");
    QVERIFY(appliance.waitForPage(PageNames::NotFound));

    // It is found again with the next message of any zone, as a part of a group's name as well.
    appliance.publishZones(R"([{"id":"g1","name":"Attic + Kitchen + Hall"}])");
    QVERIFY(appliance.handled());
    QVERIFY(appliance.waitForPage(PageNames::NotFound));
    appliance.services.publish(
        QString(reference().entry("zoneName").topicOf("g1")), "Attic + Kitchen + Hall", true);
    QVERIFY(appliance.waitForPage(PageNames::Player));
}

/** Whoever takes back a retained message sends an empty one, which is one like any other. */
void TestMessages::anEmptyMessageIsAMessage()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    const auto zone = [&](const char *property) {
        return appliance.program.probe().objectProperty(Probe::Target::type("RoonZone"), property);
    };
    appliance.publishZone("queue_items_remaining", "9");
    appliance.publishZone("nowPlaying/song", "Open Window");
    QVERIFY(appliance.handled());
    QCOMPARE(zone("queue_items_remaining"), QJsonValue(9));
    for (const char *const key : { "queue_items_remaining", "nowPlaying/song", "is_play_allowed" })
        appliance.publishZone(key, "");
    QVERIFY(appliance.handled());
    QCOMPARE(zone("queue_items_remaining"), QJsonValue(0));
    QCOMPARE(zone("nowPlaying_song"), QJsonValue(""));
    QCOMPARE(zone("is_play_allowed"), QJsonValue(false));
    // A zone that had gone is known again by one.
    appliance.publishZones("[]");
    QVERIFY(appliance.handled());
    QCOMPARE(appliance.program.probe().alive(Probe::Target::type("RoonZone")), 0);
    appliance.publishZone("name", "");
    QVERIFY(appliance.handled());
    QCOMPARE(appliance.program.probe().alive(Probe::Target::type("RoonZone")), 1);
}

/** How whole numbers have to be written. */
void TestMessages::aPointMakesNoWholeNumber()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    for (const auto &[payload, value] : std::initializer_list<std::pair<const char *, int>> {
             { "62", 62 }, { "62.5", 0 }, { "6", 6 }, { "6e1", 0 } }) {
        appliance.publishZone("nowPlaying/seekPosition", payload);
        QVERIFY(appliance.handled());
        QCOMPARE(appliance.program.probe().objectProperty(
                     Probe::Target::type("RoonZone"), "nowPlaying_seekPosition"),
            QJsonValue(value));
    }
}

void TestMessages::theOutputsOfAZone()
{
    const MqttReference::Entry &entry = reference().entry("zoneOutputs");
    Appliance appliance;
    QVERIFY(appliance.start());
    const auto commands = [&] { return appliance.commands().size(); };

    // The Kitchen follows in a group, which only the group's outputs tell.
    appliance.publishZones(R"([{"id":"g1","name":"Attic + Kitchen"}])");
    const auto publish = [&](const QString &key, const QByteArray &payload) {
        appliance.services.publish(
            QString(entry.topicOf("g1")).replace("outputs", key), payload, entry.retain);
    };
    publish("name", "Attic + Kitchen");
    publish("outputs", entry.sent.first());
    QVERIFY(appliance.handled());
    QVERIFY(appliance.waitForPage(PageNames::Player));
    QVERIFY(appliance.program.probe().tap("playPause"));
    QTRY_COMPARE_WITH_TIMEOUT(commands(), 1, PatienceMs);
    QCOMPARE(parsed(appliance.commands().first())["zone_id"].toString(), QString("g1"));

    publish("outputs", entry.oddPayload);
    QVERIFY(appliance.handled());
    QVERIFY(appliance.program.probe().tap("playPause"));
    QVERIFY(appliance.handled());
    QCOMPARE(commands(), 1);
}

void TestMessages::theConnectedFlagIsIgnored()
{
    const MqttReference::Entry &entry = reference().entry("remoteConnected");
    Appliance appliance;
    QVERIFY(appliance.start());
    for (const QByteArray &payload : { entry.sent.first(), entry.oddPayload }) {
        const int before = appliance.program.logSize();
        appliance.services.publish(entry.topic, payload, entry.retain);
        QVERIFY(appliance.handled());
        QCOMPARE(
            appliance.program.count(
                Line::warning("Mqtt::processMessageApi() unknown topic: " + entry.topic), before),
            1);
        QVERIFY(appliance.waitForPage(PageNames::Player));
    }
}

void TestMessages::whatIsNotListedChangesNothing()
{
    Appliance appliance;
    appliance.broker.allowUndocumented();
    QVERIFY(appliance.start());
    const auto warnings = [&](const QStringList &topics) {
        const int before = appliance.program.logSize();
        for (const QString &topic : topics)
            appliance.services.publish(topic, "x", true);
        return appliance.handled()
            ? appliance.program.count(LogPattern("WARN", QString()).andMore(), before)
            : -1;
    };
    QCOMPARE(warnings({ Topics::state("unheard"), Topics::core("unheard"),
                 Topics::zone("z1", "unheard"), Topics::spotify("unheard") }),
        4);
    QCOMPARE(warnings({ Topics::settings("unheard"), Topics::state("objectName"),
                 Topics::core("objectName"), Topics::zone("z1", "objectName"),
                 Topics::spotify("objectName"), Topics::core("ipAddress"),
                 Topics::core("localHostName"), Topics::core("Id") }),
        1); // the last one's first letter is another
    QVERIFY(appliance.waitForPage(PageNames::Player));

    appliance.services.publish(Topics::core("coreDetected/deeper"), "false", true);
    QVERIFY(appliance.waitForPage(PageNames::Failure));
}

void TestMessages::standby()
{
    const MqttReference::Entry &entry = reference().entry("toggleStandby");
    Appliance appliance;
    QVERIFY(appliance.start());
    QVERIFY(appliance.handled()); // and so are the warnings of the start
    const int before = appliance.program.logSize();
    const auto warnings
        = [&] { return appliance.program.count(LogPattern("WARN", QString()).andMore(), before); };
    for (const char *const payload : { "toggle_standby", "\"toggle_standby\"",
             R"(["toggle_standby"])", R"({"toggle_standby":true})", "" })
        appliance.sendCommand(payload);
    QVERIFY(appliance.handled());
    QCOMPARE(warnings(), 0);
    appliance.sendCommand(entry.oddPayload);
    QVERIFY(appliance.handled());
    QCOMPARE(warnings(), 1);
    QVERIFY(appliance.waitForPage(PageNames::Player));
    for (const QString &page : { PageNames::Clock, PageNames::ScreenSaver, PageNames::Player }) {
        appliance.sendCommand(entry.sent.first());
        QVERIFY(appliance.waitForPage(page));
    }
}

/** What comes with the connection finds the welcome page. */
void TestMessages::aRetainedCommandIsNotObeyed()
{
    Appliance appliance;
    appliance.broker.allowUndocumented();
    QVERIFY(appliance.startServices());
    const MqttReference::Entry &entry = reference().entry("toggleStandby");
    appliance.services.publish(entry.topic, entry.sent.first(), true);
    QVERIFY(appliance.services.flush());
    QVERIFY(appliance.program.startAndWait());
    QVERIFY(appliance.program.waitForLine(
        Line::info("Mqtt::processMessageApi() received 'toggle_standby' command")));
    QVERIFY(appliance.skipWelcome());
    QVERIFY(appliance.waitForPage(PageNames::Player));
    QCOMPARE(appliance.program.count(Line::debug("NavigationController::blankScreen()")), 0);
    QCOMPARE(appliance.panel.power(), QByteArray("0"));
}

void TestMessages::commandsAreSentAsDescribed()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    for (const auto &[key, value] : std::initializer_list<std::pair<const char *, const char *>> {
             { "settings/loop", "disabled" }, { "settings/shuffle", "false" },
             { "settings/autoRadio", "false" }, { "is_previous_allowed", "true" },
             { "is_next_allowed", "true" }, { "volume/hard_limit_min", "0" },
             { "volume/soft_limit", "100" }, { "volume/step", "0.5" }, { "volume/value", "20" },
             { "volume/available", "true" } })
        appliance.publishZone(key, value);
    QVERIFY(appliance.handled());
    Probe &probe = appliance.program.probe();
    for (const char *const item :
        { "playPause", "previous", "next", "radio", "shuffle", "loop", "volumeBox" })
        QVERIFY(probe.tap(item));
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows("volumeDown"), PatienceMs);
    QVERIFY(probe.tap("volumeDown"));
    const QPointF middle = probe.centre("volumeSlider");
    QVERIFY(probe.press(middle));
    QVERIFY(probe.move(middle + QPointF(30, 0)));
    QVERIFY(probe.release(middle + QPointF(30, 0)));
    QTRY_COMPARE_WITH_TIMEOUT(appliance.commands().size(), 8, PatienceMs);

    // A volume goes out with one decimal; which one depends on the slider's place.
    const QRegularExpression value("\"value\":-?[0-9]+\\.[0-9],");
    const auto form = [&value](const QByteArray &json) {
        return QString::fromUtf8(json).replace(value, "\"value\":ONE.DECIMAL,");
    };
    QStringList described;
    for (const MqttReference::Entry &entry : reference().entries()) {
        if (entry.received || !entry.topic.endsWith("/command"))
            continue;
        for (const QByteArray &payload : entry.sent)
            described.append(form(payload));
        QVERIFY(publishedAsDescribed(appliance.broker, entry));
    }
    QStringList sent;
    for (const QByteArray &payload : appliance.commands())
        sent.append(form(payload));
    described.sort();
    sent.sort();
    QCOMPARE(sent, described);
}

void TestMessages::reportsAreSentAsDescribed()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    // Trouble and its end, and a page of another brightness.
    appliance.publishCore("coreDetected", "false");
    QVERIFY(appliance.waitForPage(PageNames::Failure));
    appliance.publishCore("coreDetected", "true");
    QVERIFY(appliance.waitForPage(PageNames::Player));
    for (const char *const message : { "displayZone", "displayIdle", "displayBrightness" }) {
        const MqttReference::Entry &entry = reference().entry(message);
        for (const QByteArray &payload : entry.sent)
            QVERIFY(appliance.services.waitFor(entry.topic, payload));
        QVERIFY2(publishedAsDescribed(appliance.broker, entry), message);
    }
}

/** What every test that has a broker relies on. */
void TestMessages::theBrokerObjectsToWhatIsNotDescribed()
{
    Broker broker;
    broker.allowUndocumented(Broker::Everybody);
    QVERIFY(broker.start());
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    services.publish(Topics::state("Init"), "true", true);
    services.publish("somebody/else", "x");
    services.publish(reference().entry("zoneName").topicOf("z1"), "Kitchen", true);
    services.publish(Topics::settings("end_of_step_1"), "");
    QVERIFY(services.flush());
    QCOMPARE(broker.objections(), QStringList());

    services.publish(Topics::state("Unheard"), "true", true);
    services.publish(Topics::state("Stage"), "true");
    services.publish(Topics::state("Stage"), "false");
    services.publish(reference().entry("zoneName").topicOf("z1/2"), "Kitchen", true);
    services.publish(reference().entry("displayIdle").topic, "true", true);
    QVERIFY(services.flush());
    QCOMPARE(broker.objections(),
        QStringList({ Topics::state("Unheard") + " is not documented",
            Topics::state("Stage")
                + " is documented as QoS 0, retained, and was published as QoS 1, not "
                  "retained",
            reference().entry("zoneName").topicOf("z1/2") + " is not documented",
            reference().entry("displayIdle").topic
                + " is documented as QoS 1, not retained, and was published as QoS 1, retained" }));

    // A test of odd messages may publish such, but the program may not.
    QCOMPARE(broker.objections(Broker::Services), QStringList());
    QMqttClient program;
    program.setHostname("127.0.0.1");
    program.setPort(1883);
    program.connectToHost();
    QTRY_COMPARE_WITH_TIMEOUT(program.state(), QMqttClient::Connected, PatienceMs);
    const QString mood = Topics::display() + "mood";
    program.publish(mood, "good", 1);
    QVERIFY(services.waitFor(mood, "good"));
    QCOMPARE(broker.objections(Broker::Services), QStringList(mood + " is not documented"));
}

QTEST_GUILESS_MAIN(TestMessages)
#include "tst_messages.moc"
