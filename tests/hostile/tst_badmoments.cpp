// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"

#include <functional>

using namespace PageNames;

namespace {

const QByteArray Toggle = R"({"command":"toggle_standby"})";

/** Log lines that mark how far the start has come, in order, by their beginnings. */
const QStringList StagesUnwatched { "Enabling DEBUG...",
    "Starting up revision: ", "SystemdWatchdog::constructor", "Mqtt::constructor: connecting...",
    "UnixSignalWatcher::constructor" };
const QStringList StagesWatched { "Settings::constructor", "VelunorState::constructor",
    "Player::constructor", "Roon::constructor", "ScreenController::constructor in",
    "NavigationController::constructor", "screen name", "ImageProvider::constructor in",
    "get_player_window()", "SystemdWatchdog::notifyReady()", "Entering main event loop...",
    "Mqtt::connectedToBroker()", "Player::mqttConnected()" };

const QList<QPair<QByteArray, int>> Signals { { "SIGINT", SIGINT }, { "SIGTERM", SIGTERM } };

/** Leads from the player to another page. */
using Way = std::function<void(Appliance &)>;

} // namespace

Q_DECLARE_METATYPE(Way)

/** A signal at every stage of the start, and on every page. */
class TestBadMoments : public Ordeal {
    Q_OBJECT

private slots:
    void aSignalDuringTheStart_data();
    void aSignalDuringTheStart();
    void aSignalOnAPage_data();
    void aSignalOnAPage();
    void aSignalOnTheWelcomePage_data();
    void aSignalOnTheWelcomePage();
};

void TestBadMoments::aSignalDuringTheStart_data()
{
    QTest::addColumn<QString>("stage");
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("watched"); // the program has its own way to end by then
    for (const auto &signal : Signals) {
        for (const QString &stage : StagesUnwatched)
            QTest::addRow("%s, %s", signal.first.constData(), qPrintable(stage))
                << stage << signal.second << false;
        for (const QString &stage : StagesWatched)
            QTest::addRow("%s, %s", signal.first.constData(), qPrintable(stage))
                << stage << signal.second << true;
    }
}

void TestBadMoments::aSignalDuringTheStart()
{
    QFETCH(QString, stage);
    QFETCH(int, number);
    QFETCH(bool, watched);
    QVERIFY(house().startServices());
    QVERIFY(program().start());
    QVERIFY(program().waitForLine(Line::any(stage).andMore()));
    if (watched) {
        QVERIFY(endsInTime(number));
        return;
    }
    // There is nothing to be put in order yet: it may just be gone.
    program().sendSignal(number);
    QVERIFY(program().waitForExit());
    QVERIFY2(program().exitStatus() == 0 || program().exitStatus() == -number,
        QByteArray::number(program().exitStatus()));
}

void TestBadMoments::aSignalOnAPage_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<Way>("way");
    QTest::addColumn<int>("number");
    const auto row = [](const QString &page, const Way &way) {
        for (const auto &signal : Signals)
            QTest::addRow("%s, %s", signal.first.constData(), qPrintable(page))
                << page << way << signal.second;
    };
    row(Player, [](Appliance &) {});
    row(Settings, [](Appliance &house) { house.program.probe().tap("settingsCorner"); });
    row(Clock, [](Appliance &house) { house.sendCommand(Toggle); });
    row(ScreenSaver, [](Appliance &house) {
        house.sendCommand(Toggle);
        house.sendCommand(Toggle);
    });
    row(Failure, [](Appliance &house) { house.publishCore("coreDetected", "false"); });
    row(NotFound, [](Appliance &house) {
        house.publishZones(R"([{"id":"z2","name":"Bath"}])");
        house.publishCore("coreDetected", "true");
    });
    row(Update, [](Appliance &house) { house.publishState("UpdateInstalling", "true"); });
}

void TestBadMoments::aSignalOnAPage()
{
    QFETCH(QString, page);
    QFETCH(Way, way);
    QFETCH(int, number);
    QVERIFY(startPlayer());
    way(house());
    QVERIFY(house().waitForPage(page));
    QVERIFY(endsInTime(number));
    QVERIFY(program().isQuiet());
}

void TestBadMoments::aSignalOnTheWelcomePage_data()
{
    QTest::addColumn<int>("number");
    for (const auto &signal : Signals)
        QTest::newRow(signal.first) << signal.second;
}

void TestBadMoments::aSignalOnTheWelcomePage()
{
    QFETCH(int, number);
    QVERIFY(house().startServices());
    QVERIFY(program().startAndWait());
    QVERIFY(house().waitForPage(Welcome));
    QVERIFY(endsInTime(number));
    QVERIFY(program().isQuiet());
}

QTEST_GUILESS_MAIN(TestBadMoments)
#include "tst_badmoments.moc"
