// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/appliance.h"
#include "testkit/likeness.h"
#include "testkit/machine/display.h"
#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QElapsedTimer>
#include <QTest>

#include <functional>

using namespace PageNames;

namespace {

const QByteArray Toggle = R"({"command":"toggle_standby"})";
const QByteArray KitchenOnly = R"([{"id":"z1","name":"Kitchen"}])";
const QByteArray BathOnly = R"([{"id":"z2","name":"Bath"}])";

/** Something that lasts until the page goes. */
using Moment = std::function<bool(Appliance &)>;

} // namespace

Q_DECLARE_METATYPE(Moment)

/** Pages that come and go, with what lies on them. */
class TestPages : public QObject {
    Q_OBJECT

private slots:
    void pagesShowWithoutComplaint_data();
    void pagesShowWithoutComplaint();
    void popupsGoWithTheirPage_data();
    void popupsGoWithTheirPage();
    void pageSwitchAndEndFindAnything_data();
    void pageSwitchAndEndFindAnything();
    void anythingMayHappenAtAnyMoment();
};

void TestPages::pagesShowWithoutComplaint_data()
{
    QTest::addColumn<bool>("onDisplay");
    QTest::newRow("offscreen") << false;
    QTest::newRow("display with OpenGL") << true;
}

void TestPages::pagesShowWithoutComplaint()
{
    QFETCH(bool, onDisplay);
    Display display;
    Appliance appliance;
    appliance.program.unsetEnvironment("TOUCHUI_DEBUG");
    if (onDisplay) {
        QVERIFY(display.start());
        appliance.program.drawOn(display.name());
    }
    QVERIFY(appliance.startServices());
    appliance.publishZone("nowPlaying/imageKey", "cover");
    appliance.publishZone("nowPlaying/song", QByteArray(200, 'x'));
    appliance.publishVolume();
    appliance.publishState("UpdateAvailable", "true");
    // A picture that the service sends as it is, and a colour that nothing else on the page has.
    appliance.images.setBehaviour(
        "cover", { ImageServer::Behaviour::Picture, Qt::magenta, "PNG", 0, 0 });
    QVERIFY(appliance.services.flush());
    QVERIFY(appliance.program.startAndWait());
    Probe &probe = appliance.program.probe();
    const auto isDrawn = [&](const QString &page) {
        return appliance.waitForPage(page) && waitUntil([&] {
            const QImage picture = probe.picture();
            return !picture.isNull() && isBlank(picture, picture.rect()) == (page == ScreenSaver);
        });
    };
    const auto opensAndCloses = [&](const char *opener, const char *content) {
        return probe.tap(opener) && waitUntil([&] { return probe.shows(content); })
            && !probe.picture().isNull() && probe.tap(QPointF(5, 5))
            && waitUntil([&] { return !probe.shows(content); });
    };
    QVERIFY(isDrawn("Welcome"));
    QVERIFY(appliance.skipWelcome());
    QVERIFY(isDrawn(Player));
    const QPoint cover = probe.centre("coverPicture").toPoint();
    QTRY_COMPARE_WITH_TIMEOUT(probe.picture().pixelColor(cover), QColor(Qt::magenta), PatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows("volumeBox"), PatienceMs);
    QVERIFY(probe.shows("updateBadge"));
    QVERIFY(opensAndCloses("volumeBox", "volumeSlider"));
    QVERIFY(opensAndCloses("zoneNameText", "zoneList"));
    QVERIFY(probe.tap("settingsCorner"));
    QVERIFY(isDrawn(Settings));
    QVERIFY(probe.tap(Probe::Target("slider").inside("clockBrightness")));
    QVERIFY(probe.tap("save"));
    QVERIFY(isDrawn(Player));
    for (const QString &page : { Clock, ScreenSaver, Player }) {
        appliance.sendCommand(Toggle);
        QVERIFY(isDrawn(page));
    }
    appliance.publishCore("coreDetected", "false");
    QVERIFY(isDrawn(Failure));
    appliance.publishCore("coreDetected", "true");
    QVERIFY(isDrawn(Player));
    appliance.publishZones(BathOnly);
    appliance.publishCore("coreDetected", "true");
    QVERIFY(isDrawn(NotFound));
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows("chooserButton"), PatienceMs);
    QVERIFY(opensAndCloses("chooserButton", "zoneList"));
    appliance.publishState("UpdateInstalling", "true");
    QVERIFY(isDrawn(Update));
    QVERIFY(appliance.program.stop());
    QVERIFY(appliance.program.isQuiet());
}

void TestPages::popupsGoWithTheirPage_data()
{
    QTest::addColumn<QString>("opener");
    QTest::addColumn<QString>("content");
    QTest::newRow("volume dialog") << QString("volumeBox") << QString("volumeSlider");
    QTest::newRow("zone chooser") << QString("zoneNameText") << QString("zoneList");
}

void TestPages::popupsGoWithTheirPage()
{
    QFETCH(QString, opener);
    QFETCH(QString, content);
    Appliance appliance;
    QVERIFY(appliance.start());
    appliance.publishVolume();
    QVERIFY(appliance.handled());
    Probe &probe = appliance.program.probe();
    for (int round = 0; round < 5; ++round) {
        QVERIFY(probe.tap(opener));
        QTRY_VERIFY_WITH_TIMEOUT(probe.shows(content), PatienceMs);
        // A finger is on it when the page goes.
        const QPointF finger = probe.centre(content);
        QVERIFY(probe.press(finger));
        QVERIFY(probe.move(finger + QPointF(20, 0)));
        appliance.publishCore("coreDetected", "false");
        QVERIFY(appliance.waitForPage(Failure));
        QVERIFY(!probe.shows(content));
        QTRY_COMPARE_WITH_TIMEOUT(probe.alive(content), 0, PatienceMs);
        QVERIFY(probe.release(finger + QPointF(20, 0)));
        QVERIFY(appliance.handled());
        QVERIFY(appliance.waitForPage(Failure)); // the finger that is lifted was not meant for it
        appliance.publishCore("coreDetected", "true");
        QVERIFY(appliance.waitForPage(Player));
        QVERIFY(!probe.shows(content));
    }
    QVERIFY(appliance.program.stop());
}

void TestPages::pageSwitchAndEndFindAnything_data()
{
    QTest::addColumn<Moment>("moment");
    const auto drag = [](Appliance &appliance, const Probe::Target &item) {
        Probe &probe = appliance.program.probe();
        const QPointF middle = probe.centre(item);
        return probe.press(middle) && probe.move(middle + QPointF(30, 0))
            && probe.move(middle + QPointF(60, 0)) && probe.property(item, "pressed").toBool();
    };
    const auto open = [](Appliance &appliance, const char *opener, const char *dialog) {
        Probe &probe = appliance.program.probe();
        return probe.tap(opener) && waitUntil([&] {
            return probe.objectProperty(dialog, "opened") == QJsonValue(true);
        });
    };
    const auto row = [](const char *name, const Moment &moment) { QTest::newRow(name) << moment; };
    row("a settings slider is dragged", [drag](Appliance &appliance) {
        return appliance.program.probe().tap("settingsCorner") && appliance.waitForPage(Settings)
            && drag(appliance, Probe::Target("slider").inside("screenBrightness"));
    });
    row("the volume slider is dragged", [drag, open](Appliance &appliance) {
        return open(appliance, "volumeBox", "volumeDialog") && drag(appliance, "volumeSlider");
    });
    row("the volume dialog is opening",
        [](Appliance &appliance) { return appliance.program.probe().tap("volumeBox"); });
    row("the zone chooser is opening",
        [](Appliance &appliance) { return appliance.program.probe().tap("zoneNameText"); });
    row("the zone chooser is closing", [open](Appliance &appliance) {
        return open(appliance, "zoneNameText", "zoneDialog")
            && appliance.program.probe().tap(QPointF(5, 5));
    });
    row("the zone list is dragged", [open](Appliance &appliance) {
        Probe &probe = appliance.program.probe();
        QByteArray zones = R"([{"id":"z1","name":"Kitchen"})";
        for (int i = 2; i < 40; ++i)
            zones += R"(,{"id":"z)" + QByteArray::number(i) + R"(","name":"Zone )"
                + QByteArray::number(i) + R"("})";
        appliance.publishZones(zones + ']');
        const bool opened = appliance.handled() && open(appliance, "zoneNameText", "zoneDialog");
        const QPointF middle = probe.centre("zoneList");
        bool done = opened && probe.press(middle);
        for (int step = 1; step <= 6; ++step)
            done = done && probe.move(middle - QPointF(0, 20 * step));
        // A window collects the movements of a frame.
        return done && waitUntil([&] { return probe.property("zoneList", "dragging").toBool(); });
    });
    row("a cover hangs", [](Appliance &appliance) {
        const int before = appliance.images.requestsFor("hanging");
        appliance.publishZone("nowPlaying/imageKey", "other");
        appliance.publishZone("nowPlaying/imageKey", "hanging");
        return waitUntil([&] { return appliance.images.requestsFor("hanging") > before; });
    });
    row("a cover hangs under the open volume dialog", [open](Appliance &appliance) {
        const int before = appliance.images.requestsFor("hanging");
        appliance.publishZone("nowPlaying/imageKey", "hanging");
        return waitUntil([&] { return appliance.images.requestsFor("hanging") > before; })
            && open(appliance, "volumeBox", "volumeDialog");
    });
    row("a page is being made",
        [](Appliance &appliance) { return appliance.program.probe().tap("settingsCorner"); });
}

void TestPages::pageSwitchAndEndFindAnything()
{
    QFETCH(Moment, moment);
    Appliance appliance;
    appliance.images.setBehaviour(
        "hanging", { ImageServer::Behaviour::Hang, Qt::red, "JPEG", 0, 0 });
    appliance.images.setBehaviour("other", {});
    QVERIFY(appliance.start());
    appliance.publishVolume();
    QVERIFY(appliance.handled());
    Probe &probe = appliance.program.probe();

    QVERIFY(moment(appliance));
    // The settings outlive the core; an update ends every page, and is what all of them lead to.
    appliance.publishState("UpdateInstalling", "true");
    QVERIFY(appliance.waitForPage(Update));
    QTRY_COMPARE_WITH_TIMEOUT(
        probe.alive("volumeDialog") + probe.alive("zoneDialog"), 0, PatienceMs);
    QVERIFY(probe.release(QPointF(400, 240)));
    QVERIFY(appliance.handled());
    QVERIFY(appliance.waitForPage(Update));
    QVERIFY(appliance.program.stop());
    QVERIFY(appliance.program.isQuiet());

    appliance.publishState("UpdateInstalling", "false");
    appliance.publishZone("nowPlaying/imageKey", "other");
    QVERIFY(appliance.services.flush());
    QVERIFY(appliance.program.startAndWait());
    QVERIFY(appliance.skipWelcome());
    QVERIFY(appliance.waitForPage(Player));
    QVERIFY(appliance.handled());
    QVERIFY(moment(appliance));
    QElapsedTimer time;
    time.start();
    QVERIFY(appliance.program.stop());
    qInfo("ended after %lld ms", static_cast<long long>(time.elapsed()));
    QVERIFY(appliance.program.isQuiet());
    QCOMPARE(appliance.program.log().last().withoutPlace(),
        QString("INFO  Left main event loop with exit code 0"));
}

void TestPages::anythingMayHappenAtAnyMoment()
{
    Appliance appliance;
    QVERIFY(appliance.start());
    appliance.images.setBehaviour(
        "slow", { ImageServer::Behaviour::Picture, Qt::red, "JPEG", 30, 0 });
    Probe &probe = appliance.program.probe();
    using Event = std::function<void()>;
    const auto tap = [&probe](double x, double y) { probe.tap(QPointF(x, y)); };
    const QList<Event> events {
        [&] { appliance.sendCommand(Toggle); },
        [&] { appliance.publishCore("coreDetected", "false"); },
        [&] { appliance.publishCore("coreDetected", "true"); },
        [&] { appliance.publishZones(BathOnly); },
        [&] { appliance.publishZones(KitchenOnly); },
        [&] { appliance.publishZone("state", "playing"); },
        [&] { appliance.publishZone("state", "stopped"); },
        [&] { appliance.publishSetting("touchscreen_blankscreen", "true"); },
        [&] { appliance.publishSetting("touchscreen_blankscreen", "false"); },
        [&] { appliance.publishZone("nowPlaying/imageKey", "slow"); },
        [&] { tap(4, 240); },
        [&] { tap(790, 470); },
        [&] { tap(600, 450); },
    };
    // The same events in every run, and no waiting for what they lead to.
    quint32 number = 1;
    for (int i = 0; i < 400; ++i) {
        number = number * 1664525u + 1013904223u;
        events.at(static_cast<int>((number >> 16) % static_cast<quint32>(events.size())))();
    }
    QVERIFY(appliance.handled());
    // Out of wherever it is: an update is the one page that all others lead to.
    appliance.publishState("UpdateInstalling", "true");
    QVERIFY(appliance.waitForPage(Update));
    QTRY_COMPARE_WITH_TIMEOUT(probe.alive("zoneList"), 0, PatienceMs);
    QVERIFY(appliance.program.isQuiet());
    QVERIFY(appliance.program.stop());
}

QTEST_GUILESS_MAIN(TestPages)
#include "tst_pages.moc"
