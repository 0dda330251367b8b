// SPDX-License-Identifier: GPL-3.0-or-later
#include "appliance.h"
#include "waiting.h"

#include <QTest>

#include <functional>

namespace {

const QByteArray Toggle = R"({"command":"toggle_standby"})";
const QByteArray KitchenOnly = R"([{"id":"z1","name":"Kitchen"}])";
const QByteArray BathOnly = R"([{"id":"z2","name":"Bath"}])";

const QString Player = "RoonPlayerWindow2";
const QString Settings = "SettingsWindow";
const QString Failure = "RoonConnectionFailure";
const QString ScreenSaver = "ScreenSaver";
const QString Clock = "Clock";
const QString NotFound = "RoonZoneNotFound";
const QString Update = "UpdateInstalling";

} // namespace

/** Pages that come and go, with what lies on them. */
class PagesTest : public QObject {
    Q_OBJECT

private slots:
    void pagesShowWithoutComplaint();
    void popupsGoWithTheirPage_data();
    void popupsGoWithTheirPage();
    void anythingMayHappenAtAnyMoment();
};

void PagesTest::pagesShowWithoutComplaint()
{
    Appliance appliance;
    appliance.program.unsetEnvironment("TOUCHUI_DEBUG");
    QVERIFY(appliance.startServices());
    appliance.publishZone("nowPlaying/imageKey", "cover");
    appliance.images.setBehaviour("cover", {});
    QVERIFY(appliance.services.flush());
    QVERIFY(appliance.program.startAndWait());
    QVERIFY(appliance.waitForPage(Player));
    Probe &probe = appliance.program.probe();

    QVERIFY(probe.tap("zoneNameText"));
    QTRY_VERIFY_WITH_TIMEOUT(probe.shows("zoneList"), PatienceMs);
    QVERIFY(probe.tap(QPointF(5, 5)));
    QTRY_VERIFY_WITH_TIMEOUT(!probe.shows("zoneList"), PatienceMs);
    QVERIFY(probe.tap("settingsCorner"));
    QVERIFY(appliance.waitForPage(Settings));
    QVERIFY(probe.tap("save"));
    QVERIFY(appliance.waitForPage(Player));
    for (const QString &page : { Clock, ScreenSaver, Player }) {
        appliance.sendCommand(Toggle);
        QVERIFY(appliance.waitForPage(page));
    }
    appliance.publishCore("coreDetected", "false");
    QVERIFY(appliance.waitForPage(Failure));
    appliance.publishCore("coreDetected", "true");
    QVERIFY(appliance.waitForPage(Player));
    appliance.publishZones(BathOnly);
    appliance.publishCore("coreDetected", "true");
    QVERIFY(appliance.waitForPage(NotFound));
    appliance.publishState("UpdateInstalling", "true");
    QVERIFY(appliance.waitForPage(Update));
    QVERIFY(appliance.program.stop());

    // Qt and the scene have no line of ours in front of what they complain about.
    for (const LogLine &line : appliance.program.log()) {
        const bool complaint
            = line.level == "WARN" || line.level == "ERROR" || line.level.isEmpty();
        QVERIFY2(!complaint || line.file.endsWith(".cpp"), qPrintable(line.whole));
    }
}

void PagesTest::popupsGoWithTheirPage_data()
{
    QTest::addColumn<QString>("opener");
    QTest::addColumn<QString>("content");
    QTest::newRow("volume dialog") << QString("volumeBox") << QString("volumeSlider");
    QTest::newRow("zone chooser") << QString("zoneNameText") << QString("zoneList");
}

void PagesTest::popupsGoWithTheirPage()
{
    QFETCH(QString, opener);
    QFETCH(QString, content);
    Appliance appliance;
    QVERIFY(appliance.start());
    appliance.publishZone("volume/soft_limit", "80");
    appliance.publishZone("volume/available", "true");
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

void PagesTest::anythingMayHappenAtAnyMoment()
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
    for (const LogLine &line : appliance.program.log())
        QVERIFY2(line.level != "WARN" || line.file.endsWith(".cpp"), qPrintable(line.whole));
    QVERIFY(appliance.program.stop());
}

QTEST_GUILESS_MAIN(PagesTest)
#include "tst_pages.moc"
