// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/topics.h"
#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QTest>

#include <functional>
#include <memory>

using namespace PageNames;

namespace {

const QString IdleTopic = Topics::display() + "idle";
const QByteArray Toggle = R"({"command":"toggle_standby"})";
const QByteArray KitchenOnly = R"([{"id":"z1","name":"Kitchen"}])";
const QByteArray BathOnly = R"([{"id":"z2","name":"Bath"}])";

/** Something that happens on the appliance or on its screen. */
using Event = std::function<bool(Appliance &)>;

Event core(const QByteArray &detected)
{
    return [detected](Appliance &appliance) {
        appliance.publishCore("coreDetected", detected);
        return true;
    };
}

Event zones(const QByteArray &json)
{
    return [json](Appliance &appliance) {
        appliance.publishZones(json);
        appliance.publishZone("name", "Kitchen"); // a zone that was dropped speaks once more
        // The list alone changes no page; it counts when the situation is looked at again.
        appliance.publishCore("coreDetected", "true");
        return true;
    };
}

Event state(const QByteArray &text)
{
    return [text](Appliance &appliance) {
        appliance.publishZone("state", text);
        return true;
    };
}

Event setting(const QString &key, const QByteArray &value)
{
    return [key, value](Appliance &appliance) {
        appliance.publishSetting(key, value);
        return true;
    };
}

Event updating(const QByteArray &value)
{
    return [value](Appliance &appliance) {
        appliance.publishState("UpdateInstalling", value);
        return true;
    };
}

Event toggle()
{
    return [](Appliance &appliance) {
        appliance.sendCommand(Toggle);
        return true;
    };
}

Event tap(const Probe::Target &item)
{
    return [item](Appliance &appliance) { return appliance.program.probe().tap(item); };
}

/** The middle of the screen's left edge, where no page has anything but itself. */
Event tapPage()
{
    return [](Appliance &appliance) { return appliance.program.probe().tap(QPointF(4, 240)); };
}

/** An event, the page that it leads to, and what the display reports on the way. */
struct Step {
    Event event;
    QString page;
    QList<QByteArray> idle = {};
};
using Walk = QList<Step>;

} // namespace

Q_DECLARE_METATYPE(Walk)

/** The walks through the screens, driven by messages and touches. */
class TestNavigation : public QObject {
    Q_OBJECT

private slots:
    void welcomeLeadsOn_data();
    void welcomeLeadsOn();
    void walks_data();
    void walks();
};

void TestNavigation::welcomeLeadsOn_data()
{
    QTest::addColumn<QByteArray>("detected");
    QTest::addColumn<QByteArray>("zones");
    QTest::addColumn<QString>("page");
    QTest::newRow("core and zone") << QByteArray("true") << KitchenOnly << Player;
    QTest::newRow("no core") << QByteArray("false") << KitchenOnly << Failure;
    QTest::newRow("no zone") << QByteArray("true") << BathOnly << NotFound;
}

void TestNavigation::welcomeLeadsOn()
{
    QFETCH(QByteArray, detected);
    QFETCH(QByteArray, zones);
    QFETCH(QString, page);
    Appliance appliance;
    QVERIFY(appliance.startServices());
    appliance.publishCore("coreDetected", detected);
    appliance.publishZones(zones);
    QVERIFY(appliance.services.flush());
    QVERIFY(appliance.program.startAndWait());
    QVERIFY(appliance.waitForPage("Welcome"));
    QVERIFY(appliance.waitForPage(page));
    QVERIFY(appliance.program.stop());
}

void TestNavigation::walks_data()
{
    QTest::addColumn<Walk>("walk");

    QTest::newRow("standby command")
        << Walk { { toggle(), Clock }, { toggle(), ScreenSaver }, { toggle(), Player } };
    QTest::newRow("standby command with a blank screen")
        << Walk { { setting("touchscreen_blankscreen", "true"), Player }, { toggle(), ScreenSaver },
               { toggle(), Player } };
    QTest::newRow("touches") << Walk { { tap("cover"), Clock }, { tapPage(), ScreenSaver },
        { tapPage(), Player }, { tap("cycleCorner"), Clock } };
    QTest::newRow("settings by touch") << Walk { { tap("settingsCorner"), Settings },
        { toggle(), Settings }, { tap(Probe::Target("title").inside(Settings)), Player },
        { tap("settingsCorner"), Settings }, { tap("save"), Player } };
    QTest::newRow("settings stay when the core goes") << Walk { { tap("settingsCorner"), Settings },
        { core("false"), Settings, { "true" } }, { tap("save"), Failure } };

    QTest::newRow("core goes and comes")
        << Walk { { core("false"), Failure, { "true" } }, { core("true"), Player, { "false" } } };
    QTest::newRow("zone goes and comes") << Walk { { zones(BathOnly), NotFound, { "true" } },
        { zones(KitchenOnly), Player, { "false" } } };
    QTest::newRow("zone goes, then the core") << Walk { { zones(BathOnly), NotFound, { "true" } },
        { core("false"), Failure }, { core("true"), NotFound } };
    QTest::newRow("failure page by touch")
        << Walk { { core("false"), Failure, { "true" } }, { tapPage(), Clock },
               { tapPage(), ScreenSaver }, { tapPage(), Failure, { "false", "true" } } };
    QTest::newRow("not found page by touch") << Walk { { zones(BathOnly), NotFound, { "true" } },
        { tapPage(), Clock }, { toggle(), ScreenSaver } };
    QTest::newRow("another zone is chosen on the not found page")
        << Walk { { zones(BathOnly), NotFound, { "true" } }, { tap("chooserButton"), NotFound },
               { tap(Probe::Target::text("Bath")), NotFound } };
    QTest::newRow("the clock stays when the core goes") << Walk { { toggle(), Clock },
        { core("false"), Clock, { "true" } }, { core("true"), Clock } };

    // Music stops the delay that the paused zone had begun with the default of ten minutes.
    QTest::newRow("screen saver shows the clock") << Walk { { state("playing"), Player },
        { setting("touchscreen_screensaver_time", "0"), Player },
        { state("stopped"), Clock, { "true" } } };
    QTest::newRow("screen saver blanks") << Walk { { state("playing"), Player },
        { setting("touchscreen_blankscreen", "true"), Player },
        { setting("touchscreen_screensaver_time", "0"), Player },
        { state("stopped"), ScreenSaver, { "true" } } };
    QTest::newRow("a delay that runs is not begun anew")
        << Walk { { setting("touchscreen_screensaver_time", "0"), Player },
               { state("stopped"), Player } };
    QTest::newRow("no screen saver while music plays") << Walk { { state("playing"), Player },
        { setting("touchscreen_screensaver_time", "0"), Player }, { state("loading"), Player } };
    QTest::newRow("music wakes the clock")
        << Walk { { toggle(), Clock }, { state("playing"), Player } };
    QTest::newRow("music wakes the screen saver")
        << Walk { { state("playing"), Player }, { toggle(), Clock }, { toggle(), ScreenSaver },
               { state("stopped"), ScreenSaver }, { state("playing"), Player } };
    QTest::newRow("music after an unknown state wakes nothing")
        << Walk { { toggle(), Clock }, { state("unknown"), Clock }, { state("playing"), Clock } };

    QTest::newRow("update from the player") << Walk { { updating("true"), Update },
        { updating("false"), Update }, { tapPage(), Update }, { toggle(), Update } };
    QTest::newRow("update from the clock")
        << Walk { { toggle(), Clock }, { updating("true"), Update } };
    QTest::newRow("update from the settings")
        << Walk { { tap("settingsCorner"), Settings }, { updating("true"), Update } };
    // Deliberate: each look at the situation, and a message about the core leads to two, reports
    // idle and busy again.
    QTest::newRow("update while the core is away") << Walk { { core("false"), Failure, { "true" } },
        { updating("true"), Update, { "false", "true", "false" } },
        { core("false"), Update, { "true", "false", "true", "false" } } };
}

void TestNavigation::walks()
{
    QFETCH(Walk, walk);
    Appliance appliance;
    QVERIFY(appliance.start());
    QVERIFY(appliance.handled());
    appliance.services.clear();

    int number = 0;
    QList<QByteArray> idle;
    for (const Step &step : walk) {
        const QByteArray where = "step " + QByteArray::number(++number);
        QVERIFY2(step.event(appliance), where);
        QVERIFY2(appliance.handled(), where);
        QVERIFY2(appliance.waitForPage(step.page), where);
        idle.append(step.idle);
    }
    // The reports follow what they report at once; one more message is behind all of them.
    QVERIFY(appliance.handled());
    QTRY_COMPARE_WITH_TIMEOUT(appliance.services.payloads(IdleTopic), idle, PatienceMs);
    QVERIFY(appliance.program.stop());
}

QTEST_GUILESS_MAIN(TestNavigation)
#include "tst_navigation.moc"
