// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/scenario/scenario.h"

#include "simulator/scenario/actionrunner.h"
#include "simulator/services/disturbance.h"
#include "simulator/services/imageservice.h"
#include "simulator/services/remotecontrolservice.h"
#include "simulator/services/stateservice.h"
#include "simulator/simulator.h"

#include <QDir>
#include <QTest>

class TestScenario : public QObject {
    Q_OBJECT

private slots:
    void everyNamedScenarioIsThere();
    void everyFileParses_data() { files(); }
    void everyFileParses();
    void everyActionInAFileCanBeCarriedOut_data() { files(); }
    void everyActionInAFileCanBeCarriedOut();
    void readsEveryMember();
    void emptyArrayIsAScenario();
    void malformedTellsFileLineAndExpectation_data();
    void malformedTellsFileLineAndExpectation();
    void knowsTheNamesThatZonesGetAndHave();
    void unreadableFileIsTold();

private:
    static void files();
};

void TestScenario::files()
{
    QTest::addColumn<QString>("file");
    const QFileInfoList found = QDir(QStringLiteral(TOUCHUI_CHECKOUT "/scenarios"))
                                    .entryInfoList({ QStringLiteral("*.json") });
    for (const QFileInfo &file : found)
        QTest::newRow(qPrintable(file.completeBaseName())) << file.filePath();
}

void TestScenario::everyNamedScenarioIsThere()
{
    const char *const names[] = { "first-boot", "playing", "radio", "grouped", "paused-to-clock",
        "zone-missing", "core-lost", "update", "flood", "hostile", "soak" };
    for (const char *const name : names) {
        QVERIFY2(
            QFile::exists(
                QStringLiteral(TOUCHUI_CHECKOUT "/scenarios/%1.json").arg(QLatin1String(name))),
            name);
    }
}

void TestScenario::everyFileParses()
{
    QFETCH(QString, file);
    Scenario scenario;
    QString problem;
    QVERIFY2(scenario.load(file, &problem), qPrintable(problem));
    QVERIFY(!scenario.steps().isEmpty());
    QVERIFY(!scenario.description().isEmpty());
}

void TestScenario::everyActionInAFileCanBeCarriedOut()
{
    QFETCH(QString, file);
    Scenario scenario;
    QString problem;
    QVERIFY2(scenario.load(file, &problem), qPrintable(problem));
    RemoteControlService remote(QStringLiteral("Some Other Name"), 1);
    StateService state(1);
    ImageService images;
    Disturbance disturbance(remote.mainZone()->id(), 1);
    ActionRunner runner(&remote, &state, &images, &disturbance);
    Simulator::fillQueues(&remote);
    remote.start(QString());
    state.start();
    // Twice, because a scenario that repeats itself begins in the state in which it ended.
    const int rounds = scenario.steps().last().kind == Scenario::Step::Repeat ? 2 : 1;
    for (int round = 0; round < rounds; ++round) {
        for (const Scenario::Step &step : scenario.steps()) {
            if (step.kind != Scenario::Step::Act)
                continue;
            QString reason;
            QVERIFY2(runner.run(step.action, &reason),
                qPrintable(step.action.name + QStringLiteral(": ") + reason));
        }
    }
}

void TestScenario::readsEveryMember()
{
    Scenario scenario;
    QString problem;
    QVERIFY2(scenario.parse(R"([
        { "after_ms": 0, "note": "What it is", "action": "volume", "value": 12.5 },
        { "after_ms": 250, "topic": "a/b", "payload": "ü", "retain": true },
        { "after_ms": 1, "topic": "a", "payload_base64": "/w==" },
        { "after_ms": 0, "action": "repeat" } ])",
                 QStringLiteral("x.json"), &problem),
        qPrintable(problem));
    QCOMPARE(scenario.description(), QStringLiteral("What it is"));
    const QVector<Scenario::Step> &steps = scenario.steps();
    QCOMPARE(steps.size(), 4);
    QCOMPARE(int(steps.at(0).kind), int(Scenario::Step::Act));
    QCOMPARE(steps.at(0).action.real("value"), 12.5);
    QCOMPARE(steps.at(1).afterMs, 250);
    QCOMPARE(steps.at(1).topic, QStringLiteral("a/b"));
    QCOMPARE(steps.at(1).payload, QByteArray("ü"));
    QVERIFY(steps.at(1).retain);
    QCOMPARE(steps.at(2).payload, QByteArray("\xff"));
    QVERIFY(!steps.at(2).retain);
    QCOMPARE(int(steps.at(3).kind), int(Scenario::Step::Repeat));
}

void TestScenario::emptyArrayIsAScenario()
{
    Scenario scenario;
    QString problem;
    QVERIFY(scenario.parse("[]", QStringLiteral("x.json"), &problem));
    QVERIFY(scenario.steps().isEmpty());
    QVERIFY(scenario.description().isEmpty());
}

void TestScenario::malformedTellsFileLineAndExpectation_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("problem");
    const auto row = [](const char *name, const char *text, const char *problem) {
        QTest::newRow(name) << QByteArray(text) << QString::fromUtf8(problem);
    };
    row("empty file", "", "x.json:1: expected JSON");
    row("no JSON", "[\n\n  { \"after_ms\": }\n]", "x.json:3: expected JSON");
    row("no array", "{}", "x.json:1: expected an array of steps");
    row("cut off", "[\n { \"after_ms\": 0, \"action\": \"pl", "x.json:2: expected JSON");
    row("member twice",
        "[\n { \"after_ms\": 0, \"action\": \"play\" },\n"
        " { \"after_ms\": 0,\n \"after_ms\": 5, \"action\": \"play\" } ]",
        "x.json:3: expected each member once, found one twice");
    row("mark before the text, line ends of another system",
        "\xef\xbb\xbf[\r\n { \"after_ms\": -1 } ]", "x.json:2: expected \"after_ms\"");
    row("more than fits", "[ { \"after_ms\": 4294967296, \"action\": \"play\" } ]",
        "found 4294967296");
    row("nested too deeply", QByteArray(5000, '[').constData(), "x.json:1: expected JSON");
    row("no object", "[\n  { \"after_ms\": 0, \"action\": \"play\" },\n  7\n]",
        "x.json:3: expected a step in braces, found 7");
    row("no time", "[\n { \"action\": \"play\" } ]", "x.json:2: expected \"after_ms\" to be");
    row("negative time", "[ { \"after_ms\": -1, \"action\": \"play\" } ]", "found -1");
    row("time is text", "[ { \"after_ms\": \"soon\", \"action\": \"play\" } ]", "found \"soon\"");
    row("neither topic nor action", "[ { \"after_ms\": 0 } ]",
        "x.json:1: expected either \"topic\" or \"action\"");
    row("both", "[ { \"after_ms\": 0, \"topic\": \"a\", \"action\": \"play\" } ]",
        "found both or none");
    row("wildcard", "[ { \"after_ms\": 0, \"topic\": \"a/#\", \"payload\": \"\" } ]",
        "found \"a/#\"");
    row("topic is a number", "[ { \"after_ms\": 0, \"topic\": 7, \"payload\": \"\" } ]",
        "expected \"topic\" to be a text, found 7");
    row("no payload", "[ { \"after_ms\": 0, \"topic\": \"a\" } ]",
        "expected either \"payload\" or \"payload_base64\"");
    row("bad base64", "[ { \"after_ms\": 0, \"topic\": \"a\", \"payload_base64\": \"*\" } ]",
        "found \"*\"");
    row("retain is text",
        "[ { \"after_ms\": 0, \"topic\": \"a\", \"payload\": \"\", \"retain\": \"yes\" } ]",
        "expected \"retain\" to be true or false, found \"yes\"");
    row("unknown member",
        "[\n\n\n { \"after_ms\": 0, \"topic\": \"a\", \"payload\": \"\", \"qos\": 1 } ]",
        "x.json:4: expected \"after_ms\", \"topic\"");
    row("unknown action", "[ { \"after_ms\": 0, \"action\": \"explode\" } ]", "found \"explode\"");
    const auto action = [&row](const char *name, const char *members, const char *problem) {
        const QByteArray text
            = QByteArray("[\n { \"after_ms\": 0, \"action\": ") + members + " } ]";
        row(name, text.constData(), (QByteArray("x.json:2: ") + problem).constData());
    };
    action("unknown mode of pictures", R"("image", "mode": "odd")",
        "expected \"mode\" of action \"image\" to be one of normal, slow, hang, fail, drop, "
        "garbage, found \"odd\"");
    action("negative delay", R"("image", "mode": "slow", "ms": -1)",
        "expected \"ms\" of action \"image\" to be a whole number from 0 on, found -1");
    action("unknown mode of loops", R"("loop", "mode": "twice")",
        "expected \"mode\" of action \"loop\" to be one of disabled, loop, loop_one, found "
        "\"twice\"");
    action("unknown album", R"("play", "album": "Nothing")",
        "expected \"album\" of action \"play\" to be one of Lanterns on the Breakwater, ");
    action("track 0", R"("play", "album": "Northern Arithmetic", "track": 0)",
        "expected \"track\" of action \"play\" to be a whole number from 1 on, found 0");
    action("track beyond the last", R"("play", "album": "Northern Arithmetic", "track": 99)",
        "expected \"track\" to be one of the ");
    action("track of no album", R"("play", "track": 1)", "expected \"album\" where there is");
    action("negative seconds", R"("seek", "seconds": -1)", "expected \"seconds\" of action");
    action("unknown zone", R"("pause", "zone": "Cellar")", "expected a zone (Hugo2X, Kitchen, ");
    action("unknown zone in a group", R"("group", "zones": ["", "Cellar"])", "expected a zone (");
    action("group of one", R"("group", "zones": ["Kitchen"])",
        "expected \"zones\" of action \"group\" to be a list of two or more texts, found "
        "[\"Kitchen\"]");
    action("endless flood", R"("flood", "per_second": 0)",
        "expected \"per_second\" of action \"flood\" to be a whole number from 1 to 100000");
    action("flood that is too fast", R"("flood", "per_second": 100001)", "expected");
    action("flood that is too long", R"("flood", "seconds": 3601)", "expected");
    action("too much noise", R"("noise", "count": 100001)", "expected");
    row("braces in texts",
        "[\n { \"after_ms\": 0, \"topic\": \"a\", \"payload\": \"{[\\\",\" },\n [ {\n } ],\n 5 ]",
        "x.json:3: expected a step in braces");
    row("endless", "[ { \"after_ms\": 0, \"action\": \"repeat\" } ]", "before \"repeat\"");
    row("repeat with argument", "[ { \"after_ms\": 5, \"action\": \"repeat\", \"times\": 2 } ]",
        "found \"repeat\"");
}

void TestScenario::malformedTellsFileLineAndExpectation()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, problem);
    Scenario scenario;
    QString found;
    QVERIFY(!scenario.parse(text, QStringLiteral("x.json"), &found));
    QVERIFY2(found.contains(problem), qPrintable(found));
    QVERIFY(scenario.steps().isEmpty());
}

void TestScenario::knowsTheNamesThatZonesGetAndHave()
{
    const QByteArray text = R"([
        { "after_ms": 0, "action": "pause", "zone": "Bathroom" },
        { "after_ms": 9, "action": "rename", "zone": "Bath", "name": "Bathroom" },
        { "after_ms": 9, "action": "pause", "zone": "Hugo2X" } ])";
    QString problem;
    QVERIFY2(Scenario().parse(text, QStringLiteral("x.json"), &problem), qPrintable(problem));
    QVERIFY(!Scenario(QStringLiteral("Salon")).parse(text, QStringLiteral("x.json"), &problem));
    QVERIFY2(problem.startsWith(QLatin1String("x.json:4: expected a zone (Salon, Kitchen, ")),
        qPrintable(problem));
}

void TestScenario::unreadableFileIsTold()
{
    Scenario scenario;
    QString problem;
    QVERIFY(!scenario.load(QStringLiteral("/nowhere/x.json"), &problem));
    QVERIFY(problem.startsWith(QLatin1String("/nowhere/x.json: cannot be read")));
}

QTEST_GUILESS_MAIN(TestScenario)
#include "tst_scenario.moc"
