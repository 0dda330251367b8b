// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/panel.h"
#include "testkit/pagenames.h"
#include "testkit/process/program.h"
#include "testkit/process/simulatorprogram.h"
#include "testkit/services/broker.h"
#include "testkit/waiting.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace PageNames;

/** Every scenario that comes with the simulator, played to the real program. */
class TestScenarios : public QObject {
    Q_OBJECT

private slots:
    void bringsTheProgramWhereItShould_data();
    void bringsTheProgramWhereItShould();
};

void TestScenarios::bringsTheProgramWhereItShould_data()
{
    QTest::addColumn<QString>("speed");     // slow enough for pages to outlast the welcome
    QTest::addColumn<QStringList>("pages"); // one after the other
    QTest::addColumn<QString>("line");      // then the simulator has told this
    QTest::addColumn<QString>("text");      // and then this is shown
    QStringList names;
    const auto row = [&names](const char *scenario, const char *speed, const QStringList &pages,
                         const char *line, const char *text) {
        names.append(QString::fromLatin1(scenario) + QStringLiteral(".json"));
        QTest::newRow(scenario) << QString::fromLatin1(speed) << pages << QString::fromUtf8(line)
                                << QString::fromUtf8(text);
    };
    row("core-lost", "5", { Failure, Player }, "action: core_back", "Hugo2X");
    row("first-boot", "1.5", { Failure, Player }, "playing: Hugo2X", "Harbour Before Six");
    row("flood", "1", { Player }, "action: flood", "Harbour Before Six");
    row("grouped", "5", { Player }, "action: group", "Hugo2X + Kitchen");
    row("hostile", "5", { Player }, "action: noise", "Hugo2X");
    row("paused-to-clock", "5", { Clock, Player }, "action: play", "Hugo2X");
    row("playing", "5", { Player }, "playing: Hugo2X", "Harbour Before Six");
    row("radio", "5", { Player }, "playing: Hugo2X", "Harbour Light FM");
    row("soak", "20", { Player }, "action: withdraw_update", "Hugo2X");
    row("update", "2", { Player, Update }, "update: installing", "Update in progress...");
    row("zone-missing", "5", { NotFound, Player }, "action: restore", "Hugo2X");
    QCOMPARE(names,
        QDir(QStringLiteral(TOUCHUI_CHECKOUT "/scenarios")).entryList(QDir::Files, QDir::Name));
}

void TestScenarios::bringsTheProgramWhereItShould()
{
    QFETCH(QString, speed);
    QFETCH(QStringList, pages);
    QFETCH(QString, line);
    QFETCH(QString, text);
    const Panel panel;
    Broker broker;
    QFile scenario(
        QStringLiteral(TOUCHUI_CHECKOUT "/scenarios/") + QTest::currentDataTag() + ".json");
    QVERIFY(scenario.open(QIODevice::ReadOnly));
    if (scenario.readAll().contains(R"("action": "noise")")) // messages that nobody should send
        broker.allowUndocumented();
    QVERIFY(broker.start());
    SimulatorProgram simulator;
    QVERIFY(simulator.startAndWait({ "--scenario", QTest::currentDataTag(), "--speed", speed }));
    Program program;
    QVERIFY(program.startAndWait());
    for (const QString &page : qAsConst(pages))
        QVERIFY(program.waitForPage(page));
    QVERIFY(simulator.waitForLine(line));
    QTRY_VERIFY_WITH_TIMEOUT(program.probe().shows(Probe::Target::text(text)), PatienceMs);
    for (const LogLine &each : program.log())
        QVERIFY2(each.level != "WARN" || !(each.file.isEmpty() || each.file.endsWith(".qml")),
            qPrintable(each.whole));
    QVERIFY(program.stop());
    QVERIFY(simulator.stop());
}

QTEST_GUILESS_MAIN(TestScenarios)
#include "tst_scenarios.moc"
