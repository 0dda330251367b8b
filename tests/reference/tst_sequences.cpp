// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/services/mqttreference.h"
#include "testkit/waiting.h"

namespace {

using Payloads = QList<QByteArray>;

const MqttReference::Entry &entry(const QString &message)
{
    return MqttReference::instance().entry(message);
}

} // namespace

/** What the documents say of one thing after the other: idle reports, the page of an update. */
class TestSequences : public QObject {
    Q_OBJECT

private slots:
    void idleAtFirst_data();
    void idleAtFirst();

    void aDelayWasRunning_data();
    void aDelayWasRunning();
    void anUpdateLightsNothing();
};

void TestSequences::idleAtFirst_data()
{
    using Messages = QList<QPair<QString, QByteArray>>; // by the document's names
    QTest::addColumn<Messages>("kept");
    QTest::addColumn<Payloads>("before"); // the end of the welcome page
    QTest::addColumn<Payloads>("after");
    QTest::addColumn<QString>("page");
    const Messages core { { "coreCoreDetected", "true" } };
    const Messages zone { { "availableZones", R"([{"id":"z1","name":"Kitchen"}])" },
        { "zoneName", "Kitchen" } };
    QTest::newRow("nothing is kept")
        << Messages() << Payloads() << Payloads { "true" } << PageNames::Failure;
    QTest::newRow("the core is missing") << Messages { { "coreCoreDetected", "false" } }
                                         << Payloads { "true" } << Payloads() << PageNames::Failure;
    QTest::newRow("the zone is missing")
        << core << Payloads { "true" } << Payloads { "false", "true" } << PageNames::NotFound;
    QTest::newRow("only the zone is there")
        << zone << Payloads { "true" } << Payloads() << PageNames::Failure;
    QTest::newRow("both are there")
        << core + zone << Payloads { "true" } << Payloads { "false" } << PageNames::Player;
}

void TestSequences::idleAtFirst()
{
    using Messages = QList<QPair<QString, QByteArray>>;
    QFETCH(Messages, kept);
    QFETCH(Payloads, before);
    QFETCH(Payloads, after);
    QFETCH(QString, page);
    Appliance appliance;
    QVERIFY(appliance.broker.start());
    QVERIFY(appliance.services.connectToBroker());
    for (const auto &[message, payload] : kept)
        appliance.services.publish(entry(message).topicOf("z1"), payload, true);
    QVERIFY(appliance.services.flush());
    const auto reports = [&] { return appliance.services.payloads(entry("displayIdle").topic); };

    QVERIFY(appliance.program.startAndWait());
    QVERIFY(appliance.services.waitFor(entry("displayZone").topic, "Kitchen"));
    QVERIFY(appliance.handled());
    // On a busy machine the welcome page may have ended by now.
    QTRY_VERIFY_WITH_TIMEOUT(reports().size() >= before.size(), PatienceMs);
    QCOMPARE(reports().mid(0, before.size()), before);
    appliance.endWelcome();
    QVERIFY(appliance.waitForPage(page));
    QVERIFY(appliance.handled());
    QTRY_COMPARE_WITH_TIMEOUT(reports(), before + after, PatienceMs);
}

void TestSequences::aDelayWasRunning_data()
{
    QTest::addColumn<bool>("withdrawn");
    QTest::addColumn<QString>("page");
    QTest::newRow("the update lasts") << false << PageNames::Update;
    QTest::newRow("the update was withdrawn") << true << PageNames::Clock;
}

/** Its end brings the clock, for a moment only while the update lasts. */
void TestSequences::aDelayWasRunning()
{
    QFETCH(bool, withdrawn);
    QFETCH(QString, page);
    Appliance appliance;
    QVERIFY(appliance.start());
    Program &program = appliance.program;
    appliance.publishState("UpdateInstalling", "true");
    QVERIFY(appliance.waitForPage(PageNames::Update));
    if (withdrawn)
        appliance.publishState("UpdateInstalling", "false");
    QVERIFY(appliance.handled());
    QVERIFY(appliance.waitForPage(PageNames::Update));

    const int before = program.logSize();
    const QJsonObject delay { { "type", "QTimer" },
        { "where", QJsonObject { { "interval", 600000 }, { "active", true } } } };
    QVERIFY(program.probe().setObjectProperty(delay, "interval", 0));
    QVERIFY(program.waitForLine(
        Line::debug("NavigationController::screenChanged() " + PageNames::Clock), before));
    QVERIFY(appliance.handled());
    QVERIFY(appliance.waitForPage(page));
    QCOMPARE(program.count(
                 Line::debug("NavigationController::screenChanged() " + PageNames::Update), before),
        withdrawn ? 0 : 1);
}

/** A dark panel stays dark under the page, until music goes on. */
void TestSequences::anUpdateLightsNothing()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    for (const QString &page : { PageNames::Clock, PageNames::ScreenSaver }) {
        appliance.sendCommand(entry("toggleStandby").sent.first());
        QVERIFY(appliance.waitForPage(page));
    }
    QCOMPARE(appliance.panel.power(), QByteArray("1"));
    appliance.publishState("UpdateInstalling", "true");
    QVERIFY(appliance.waitForPage(PageNames::Update));
    QVERIFY(appliance.handled());
    QCOMPARE(appliance.panel.power(), QByteArray("1"));
    appliance.publishZone("state", "playing");
    QTRY_COMPARE_WITH_TIMEOUT(appliance.panel.power(), QByteArray("0"), PatienceMs);
    QVERIFY(appliance.waitForPage(PageNames::Update));
}

QTEST_GUILESS_MAIN(TestSequences)
#include "tst_sequences.moc"
