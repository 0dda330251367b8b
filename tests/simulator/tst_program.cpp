// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/process/simulatorprogram.h"
#include "testkit/services/broker.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QImage>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QTest>

#include <csignal>
#include <memory>

namespace {

const QString Zone = QStringLiteral("1601a7c2-hugo2x");

QString zoneTopic(const char *key)
{
    return Topics::zone(Zone, key);
}

/** The simulator at work, and somebody who listens. */
struct Appliance {
    Broker broker;
    BrokerClient display;
    SimulatorProgram simulator;

    bool start(const QStringList &arguments = {})
    {
        return broker.start() && display.connectToBroker() && simulator.startAndWait(arguments);
    }
};

} // namespace

/** The program as it is run, with a real broker. */
class TestProgram : public QObject {
    Q_OBJECT

private slots:
    void endsWithItsStatus_data();
    void endsWithItsStatus();
    void installedOneFindsItsOwnScenarios();
    void withoutScenariosSaysWhereTheyWereExpected();
    void malformedScenarioEndsWithFileAndLine();
    void withoutBrokerEndsWithItsStatus();
    void takenPortEndsWithItsStatus();
    void retainedMessagesAwaitThoseWhoComeLater();
    void obeysAndPrintsCommands();
    void printsWhatTheDisplayTells();
    void timePassesOnlyWithMusic();
    void servesCoverArtWhereItSays();
    void installsAnUpdateWhenAsked();
    void takesFaultsAtRunTime();
    void faultWithoutEffectIsRefused_data();
    void faultWithoutEffectIsRefused();
    void payloadsAreOneReadableLine();
    void worksWithoutStandardOutput();
    void endsInOrderWhenNobodyReads();
    void silentBrokerIsNamed();
    void returnsToARestartedBroker();
    void floodIsCompleteAndTheTruthReturns();
    void noiseIsFollowedByTheTruth();
    void sameSeedSameMessages();
    void firstStepsAreTrueFromTheBeginning();
    void signalsEndItInOrder();
};

void TestProgram::endsWithItsStatus_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("line");
    QTest::newRow("help") << QStringList { "--help" } << 0 << "Usage: ";
    QTest::newRow("version") << QStringList { "--version" } << 0 << "velunor-simulator 0.";
    QTest::newRow("list") << QStringList { "--list" } << 0 << "core-lost  ";
    QTest::newRow("unknown option")
        << QStringList { "--explode" } << 2 << "velunor-simulator: Unknown option 'explode'";
    QTest::newRow("bad number") << QStringList { "--speed", "fast" } << 2
                                << "velunor-simulator: --speed: expected a number";
    QTest::newRow("unknown scenario") << QStringList { "--scenario", "nonsense" } << 2
                                      << "velunor-simulator: --scenario: expected a file or one of";
}

void TestProgram::endsWithItsStatus()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, line);
    SimulatorProgram simulator;
    QVERIFY(simulator.start(arguments));
    QVERIFY(simulator.waitForExit());
    QCOMPARE(simulator.exitStatus(), status);
    QVERIFY(simulator.waitForLine(line));
}

void TestProgram::installedOneFindsItsOwnScenarios()
{
    QTemporaryDir prefix;
    QDir top(prefix.path());
    QVERIFY(top.mkpath(QStringLiteral("bin")));
    QVERIFY(top.mkpath(QStringLiteral("share/velunor-touchui/scenarios")));
    QVERIFY(QFile::copy(QStringLiteral(TOUCHUI_SIMULATOR), top.filePath(QStringLiteral("bin/s"))));
    QFile own(top.filePath(QStringLiteral("share/velunor-touchui/scenarios/own.json")));
    QVERIFY(own.open(QIODevice::WriteOnly));
    own.write("[ { \"after_ms\": 0, \"note\": \"Its own.\", \"action\": \"play\" } ]");
    own.close();
    QProcess program;
    program.start(top.filePath(QStringLiteral("bin/s")), { QStringLiteral("--list") });
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 0);
    QCOMPARE(program.readAllStandardOutput(), QByteArray("own             Its own.\n"));
}

void TestProgram::withoutScenariosSaysWhereTheyWereExpected()
{
    QTemporaryDir prefix;
    QDir top(prefix.path());
    const QString bin = QStringLiteral("so/deep/that/it/is/beside/no/source/tree/bin");
    QVERIFY(top.mkpath(bin));
    const QString copy = top.filePath(bin + QStringLiteral("/s"));
    QVERIFY(QFile::copy(QStringLiteral(TOUCHUI_SIMULATOR), copy));
    const QByteArray place
        = top.filePath(
                 QStringLiteral("so/deep/that/it/is/beside/no/source/tree/share/velunor-touchui/"
                                "scenarios or "))
              .toLocal8Bit();
    QProcess program;
    program.start(copy, { QStringLiteral("--list") });
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 3);
    QCOMPARE(program.readAllStandardOutput(), QByteArray());
    const QByteArray found = program.readAllStandardError();
    QVERIFY2(found.startsWith("velunor-simulator: no scenarios: expected some in " + place), found);
    program.start(copy, {});
    QVERIFY(program.waitForFinished());
    QCOMPARE(program.exitCode(), 2);
    QVERIFY(program.readAllStandardError().contains(place));
}

void TestProgram::malformedScenarioEndsWithFileAndLine()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("[\n { \"after_ms\": 0, \"action\": \"play\" },\n { \"after_ms\": 0 }\n]\n");
    file.close();
    SimulatorProgram simulator;
    QVERIFY(simulator.start({ "--scenario", file.fileName() }));
    QVERIFY(simulator.waitForExit());
    QCOMPARE(simulator.exitStatus(), 3);
    QVERIFY(simulator.waitForLine(
        QStringLiteral("velunor-simulator: %1:3: expected ").arg(file.fileName())));
}

void TestProgram::withoutBrokerEndsWithItsStatus()
{
    SimulatorProgram simulator;
    QVERIFY(simulator.start({ "--broker-port", "18830" }));
    QVERIFY(simulator.waitForExit());
    QCOMPARE(simulator.exitStatus(), 4);
    QVERIFY(simulator.waitForLine("velunor-simulator: no broker answers at 127.0.0.1:18830"));
}

void TestProgram::takenPortEndsWithItsStatus()
{
    QTcpServer other;
    QVERIFY(other.listen(QHostAddress::LocalHost, 8080));
    SimulatorProgram simulator;
    QVERIFY(simulator.start());
    QVERIFY(simulator.waitForExit());
    QCOMPARE(simulator.exitStatus(), 5);
    QVERIFY(simulator.waitForLine(
        "velunor-simulator: cannot be the web service on port 8080: The bound address is"));
}

void TestProgram::retainedMessagesAwaitThoseWhoComeLater()
{
    Broker broker;
    QVERIFY(broker.start());
    SimulatorProgram simulator;
    QVERIFY(simulator.startAndWait({ "--zone", "Küche" }));
    BrokerClient late;
    QVERIFY(late.connectToBroker());
    QVERIFY(late.waitFor(zoneTopic("state"), "playing"));
    QVERIFY(late.waitFor(zoneTopic("name"), "Küche"));
    QVERIFY(late.waitFor(Topics::core("coreDetected"), "true"));
    QVERIFY(late.waitFor(Topics::connected(), "true"));
    QVERIFY(late.waitFor(Topics::state("TimeSynced"), "true"));
    QVERIFY(late.waitFor(Topics::settings("touchscreen_clock24"), "true"));
    QVERIFY(simulator.stop());
}

void TestProgram::obeysAndPrintsCommands()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    QVERIFY(display.waitFor(zoneTopic("state"), "playing"));
    display.publish(Topics::command(), R"({"command":"playpause","zone_id":"1601a7c2-hugo2x"})");
    QVERIFY(display.waitFor(zoneTopic("state"), "paused"));
    QVERIFY(simulator.waitForLine("command: play/pause in Hugo2X"));
    display.publish(Topics::command(),
        R"({"command":"set_volume","how":"absolute","value":99.0,"zone_id":"1601a7c2-hugo2x"})");
    QVERIFY(display.waitFor(zoneTopic("volume/value"), "95"));
    display.publish(Topics::command(), R"({"command":"next","zone_id":"ghost"})");
    QVERIFY(simulator.waitForLine("command: refused: there is no such zone now"));
    display.publish(Topics::command(), "one\ntwo\x01");
    QVERIFY(simulator.waitForLine(
        QString::fromUtf8("command: not understood: no JSON: illegal value: one�two�")));
    QVERIFY(simulator.stop());
}

void TestProgram::printsWhatTheDisplayTells()
{
    Broker broker;
    BrokerClient display;
    QVERIFY(display.startBroker(&broker));
    display.publish(Topics::display() + "zone", "Küche", true);
    SimulatorProgram simulator;
    QVERIFY(simulator.startAndWait());
    QVERIFY(simulator.waitForLine("zone: Küche"));
    display.publish(Topics::display() + "idle", "true");
    display.publish(Topics::display() + "brightness", "150", true);
    QVERIFY(simulator.waitForLine("idle: true"));
    QVERIFY(simulator.waitForLine("brightness: 150"));
}

void TestProgram::timePassesOnlyWithMusic()
{
    Appliance appliance;
    QVERIFY(appliance.start({ "--speed", "100" }));
    auto &[broker, display, simulator] = appliance;
    QTRY_VERIFY_WITH_TIMEOUT(
        display.payloads(zoneTopic("nowPlaying/song")).size() >= 3, PatienceMs);
    display.publish(Topics::fault(), "pause");
    QVERIFY(display.waitFor(zoneTopic("state"), "paused"));
    display.clear();
    QTest::qWait(300); // nothing may come, so there is nothing to wait for
    QCOMPARE(display.messages().size(), 0);
}

void TestProgram::servesCoverArtWhereItSays()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    QTRY_VERIFY_WITH_TIMEOUT(
        !display.payloads(zoneTopic("nowPlaying/imageKey")).isEmpty(), PatienceMs);
    const QString address = QString::fromUtf8(display.payloads(Topics::core("serverUrl")).value(0));
    const QString key
        = QString::fromUtf8(display.payloads(zoneTopic("nowPlaying/imageKey")).value(0));
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(network.get(QNetworkRequest(
        QUrl(QStringLiteral("http://%1/image/%2?scale=fit&width=402&height=402&format=image/jpeg")
                 .arg(address, key)))));
    QTRY_VERIFY_WITH_TIMEOUT(reply->isFinished(), PatienceMs);
    QCOMPARE(QImage::fromData(reply->readAll()).size(), QSize(402, 402));
    display.publish(Topics::fault(), "image mode=fail");
    QVERIFY(simulator.waitForLine("action: image"));
    const std::unique_ptr<QNetworkReply> failing(network.get(reply->request()));
    QTRY_VERIFY_WITH_TIMEOUT(failing->isFinished(), PatienceMs);
    QCOMPARE(failing->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), 500);
}

void TestProgram::installsAnUpdateWhenAsked()
{
    Appliance appliance;
    QVERIFY(appliance.start({ "--speed", "50" }));
    auto &[broker, display, simulator] = appliance;
    display.publish(Topics::fault(), "offer_update info=2.0");
    QVERIFY(display.waitFor(Topics::state("UpdateAvailable"), "true"));
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(network.post(
        QNetworkRequest(QUrl(QStringLiteral("http://127.0.0.1:8080/api/install_update_v1"))),
        QByteArray()));
    QVERIFY(display.waitFor(Topics::state("UpdateInstalling"), "true"));
    QVERIFY(simulator.waitForLine("web: POST /api/install_update_v1: accepted"));
    QVERIFY(display.waitFor(Topics::state("RequireReboot"), "true"));
    QVERIFY(simulator.waitForLine("update: done"));
}

void TestProgram::takesFaultsAtRunTime()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    display.publish(Topics::fault(), "core_lost");
    QVERIFY(display.waitFor(Topics::core("coreDetected"), "false"));
    QVERIFY(display.waitFor(Topics::availableZones(), "[]"));
    display.publish(Topics::fault(), R"({"action":"core_back"})");
    QVERIFY(simulator.waitForLine("action: core_back"));
    display.publish(Topics::fault(), "rename name=\"A B\"");
    QVERIFY(display.waitFor(zoneTopic("name"), "A B"));
    display.publish(Topics::fault(), "rename");
    display.publish(Topics::fault(), "group zones=Hugo2X,Kitchen");
    QVERIFY(display.waitFor(zoneTopic("name"), "Hugo2X + Kitchen"));
    display.publish(Topics::fault(), "mute on=true");
    QVERIFY(display.waitFor(zoneTopic("volume/is_muted"), "true"));
    display.publish(Topics::fault(), "mute on=false");
    QTRY_COMPARE_WITH_TIMEOUT(
        display.payloads(zoneTopic("volume/is_muted")).last(), QByteArray("false"), PatienceMs);
    display.publish(Topics::fault(), "seek seconds=100");
    QVERIFY(display.waitFor(zoneTopic("nowPlaying/seekPosition"), "100"));
    display.publish(Topics::fault(), "inhibit_update reason=\"a backup\"");
    QVERIFY(display.waitFor(Topics::state("InhibitReason"), "a backup"));
    display.publish(Topics::fault(), "inhibit_update");
    QTRY_COMPARE_WITH_TIMEOUT(
        display.payloads(Topics::state("UpdateInhibited")).last(), QByteArray("false"), PatienceMs);
    display.publish(Topics::fault(), "image mode=upside_down");
    QVERIFY(simulator.waitForLine("fault: not understood: expected \"mode\" of action \"image\""));
    display.publish(Topics::fault(), "explode");
    QVERIFY(simulator.waitForLine("fault: not understood: expected an action"));
    display.publish(Topics::fault(), "quit");
    QVERIFY(simulator.waitForExit());
    QCOMPARE(simulator.exitStatus(), 0);
}

void TestProgram::faultWithoutEffectIsRefused_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QString>("fault");
    QTest::newRow("zone that is switched off")
        << QStringList { "remove zone=Kitchen" } << "play zone=Kitchen";
    QTest::newRow("zone that follows another")
        << QStringList { "group zones=Hugo2X,Kitchen" } << "play album=I zone=Kitchen";
    QTest::newRow("group of one") << QStringList() << "ungroup zone=Kitchen";
}

void TestProgram::faultWithoutEffectIsRefused()
{
    QFETCH(QStringList, before);
    QFETCH(QString, fault);
    Appliance appliance;
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    for (const QString &each : qAsConst(before)) {
        display.publish(Topics::fault(), each.toUtf8());
        QVERIFY(simulator.waitForLine("action: " + each));
    }
    display.publish(Topics::fault(), fault.toUtf8());
    QVERIFY(simulator.waitForLine(QStringLiteral("action: %1: refused: ").arg(fault)));
    QVERIFY(simulator.lines().filter("playing: Kitchen").isEmpty());
}

void TestProgram::payloadsAreOneReadableLine()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    display.publish(Topics::display() + "zone", QByteArray(100000, 'z'), true);
    const QString cut = QStringLiteral("zone: ") + QString(994, 'z');
    QVERIFY(simulator.waitForLine(cut + QString::fromUtf8("… (99006 more)")));
    display.publish(
        Topics::display() + "zone", QString::fromUtf8("a\nb\u2028c\u202ed غرفة ").toUtf8(), true);
    QVERIFY(simulator.waitForLine(QString::fromUtf8("zone: a�b�c�d غرفة")));
    QVERIFY(simulator.stop());
}

void TestProgram::worksWithoutStandardOutput()
{
    // Whatever takes the place of a closed descriptor must not get the lines.
    Broker broker;
    BrokerClient display;
    QVERIFY(display.startBroker(&broker));
    QProcess shell;
    shell.start("sh", { "-c", R"(exec "$0" "$@" >&- 2>&-)", QStringLiteral(TOUCHUI_SIMULATOR) });
    QVERIFY(display.waitFor(zoneTopic("state"), "playing"));
    for (const char *const number : { "1", "2" }) {
        const QString descriptor
            = QStringLiteral("/proc/%1/fd/%2").arg(shell.processId()).arg(number);
        QCOMPARE(QFile::symLinkTarget(descriptor), QStringLiteral("/dev/null"));
    }
    shell.terminate();
    QVERIFY(shell.waitForFinished());
    QCOMPARE(shell.exitCode(), 0);
}

void TestProgram::endsInOrderWhenNobodyReads()
{
    Broker broker;
    QVERIFY(broker.start());
    QProcess reader;
    reader.start(QStringLiteral("/bin/sh"),
        { QStringLiteral("-c"), QStringLiteral("(\"$0\"; echo status $? >&2) | head -n 1"),
            QStringLiteral(TOUCHUI_SIMULATOR) });
    QVERIFY(reader.waitForFinished());
    QCOMPARE(reader.readAllStandardOutput().count('\n'), 1);
    QCOMPARE(reader.readAllStandardError(), QByteArray("status 0\n"));
}

void TestProgram::silentBrokerIsNamed()
{
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    SimulatorProgram simulator;
    QVERIFY(simulator.start({ "--broker-port", QString::number(silent.serverPort()) }));
    QVERIFY(simulator.waitForLine(
        QStringLiteral("broker: waiting for an answer at 127.0.0.1:%1").arg(silent.serverPort())));
    QVERIFY(simulator.stop());
}

void TestProgram::returnsToARestartedBroker()
{
    Broker broker;
    QVERIFY(broker.start());
    SimulatorProgram simulator;
    QVERIFY(simulator.startAndWait());
    for (int restart = 1; restart <= 2; ++restart) {
        QVERIFY(broker.kill());
        QTRY_COMPARE_WITH_TIMEOUT(
            simulator.count("broker: connection lost, waiting for it to come back"), restart,
            PatienceMs);
        QTest::qWait(1200); // two more attempts, of which nothing may be told
        QCOMPARE(simulator.count("broker: connection lost, waiting for it to come back"), restart);
        QVERIFY(broker.start());
        QTRY_COMPARE_WITH_TIMEOUT(simulator.count("broker: connected"), restart + 1, PatienceMs);
        BrokerClient display;
        QVERIFY(display.connectToBroker());
        QVERIFY(display.waitFor(zoneTopic("name"), "Hugo2X"));
        QVERIFY(display.waitFor(Topics::settings("touchscreen_clock24"), "true"));
        display.publish(Topics::fault(), "remote_lost");
        QVERIFY(display.waitFor(Topics::connected(), "false"));
        display.publish(Topics::fault(), "remote_back");
        QVERIFY(display.waitFor(Topics::connected(), "true"));
    }
}

void TestProgram::floodIsCompleteAndTheTruthReturns()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    QVERIFY(display.waitFor(zoneTopic("state"), "playing"));
    const QByteArray song = display.payloads(zoneTopic("nowPlaying/song")).last();
    display.clear();
    display.publish(Topics::fault(), "flood per_second=1000 seconds=1");
    QVERIFY(display.waitFor(zoneTopic("nowPlaying/song"), "Flood 996"));
    QTRY_COMPARE_WITH_TIMEOUT(
        display.payloads(zoneTopic("nowPlaying/song")).last(), song, PatienceMs);
    int floods = 0;
    const QList<QByteArray> songs = display.payloads(zoneTopic("nowPlaying/song"));
    for (const QByteArray &each : songs)
        floods += each.startsWith("Flood ") ? 1 : 0;
    QCOMPARE(floods, 250);
}

void TestProgram::noiseIsFollowedByTheTruth()
{
    Appliance appliance;
    appliance.broker.allowUndocumented();
    QVERIFY(appliance.start());
    auto &[broker, display, simulator] = appliance;
    QVERIFY(display.waitFor(zoneTopic("state"), "playing"));
    display.publish(Topics::fault(), "noise count=500");
    QVERIFY(simulator.waitForLine("action: noise"));
    display.publish(Topics::fault(), "pause");
    QVERIFY(display.waitFor(zoneTopic("state"), "paused"));
    const QString colour = Topics::settings("touchscreen_clockcolor");
    QVERIFY(display.payloads(colour).size() > 2);
    QCOMPARE(display.payloads(colour).last(), QByteArray("grey"));
    QVERIFY(display.payloads(Topics::state("UpdateAvailable")).size() > 2);
    QCOMPARE(display.payloads(Topics::state("UpdateAvailable")).last(), QByteArray("false"));
    QVERIFY(display.payloads(Topics::connected()).size() > 2);
    QCOMPARE(display.payloads(Topics::connected()).last(), QByteArray("true"));
    BrokerClient late;
    QVERIFY(late.connectToBroker());
    QVERIFY(late.waitFor(zoneTopic("name"), "Hugo2X"));
    QVERIFY(simulator.isRunning());
}

void TestProgram::sameSeedSameMessages()
{
    const auto songs = [](const char *seed) {
        Appliance appliance;
        QList<QByteArray> heard;
        if (!appliance.start({ "--seed", seed, "--zone", "Den" }))
            return heard;
        BrokerClient &display = appliance.display;
        display.publish(Topics::fault(), "shuffle on=true");
        for (int i = 0; i < 20; ++i)
            display.publish(Topics::fault(), "next");
        display.publish(Topics::fault(), "stop");
        if (!display.waitFor(zoneTopic("state"), "stopped"))
            return QList<QByteArray>();
        return display.payloads(zoneTopic("nowPlaying/song"));
    };
    const QList<QByteArray> first = songs("7");
    QCOMPARE(first.size(), 21);
    QCOMPARE(songs("7"), first);
    QVERIFY(songs("8") != first);
}

void TestProgram::firstStepsAreTrueFromTheBeginning()
{
    Appliance appliance;
    QVERIFY(appliance.start({ "--scenario", "first-boot", "--speed", "0" }));
    auto &[broker, display, simulator] = appliance;
    QVERIFY(display.waitFor(Topics::state("RequireConfigure"), "true"));
    QVERIFY(display.waitFor(Topics::core("coreDetected"), "false"));
    QCOMPARE(display.payloads(Topics::core("coreDetected")), QList<QByteArray> { "false" });
    QCOMPARE(display.payloads(Topics::state("RequireConfigure")), QList<QByteArray> { "true" });
    QCOMPARE(display.payloads(zoneTopic("state")), QList<QByteArray>());
}

void TestProgram::signalsEndItInOrder()
{
    Broker broker;
    QVERIFY(broker.start());
    for (const int number : { SIGINT, SIGTERM }) {
        SimulatorProgram simulator;
        QVERIFY(simulator.startAndWait());
        simulator.sendSignal(number);
        QVERIFY(simulator.waitForExit());
        QCOMPARE(simulator.exitStatus(), 0);
    }
    QCOMPARE(broker.lines(QRegularExpression("^Received DISCONNECT from")).size(), 2);
}

QTEST_GUILESS_MAIN(TestProgram)
#include "tst_program.moc"
