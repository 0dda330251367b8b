// SPDX-License-Identifier: GPL-3.0-or-later
#include "machinetest.h"
#include "simulator/services/topics.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"

#include <QTest>

namespace {

const QPoint PlayPause(604, 343);
const QPoint Cover(205, 275);
const QPoint Anywhere(400, 240);

} // namespace

/** What a finger on the glass leads to: at the broker, on the panel and in the kernel's files. */
class TestFinger : public MachineTest {
    Q_OBJECT

private slots:
    void aTouchOnPlayArrivesAtTheBroker();
    void touchesLeadToTheClockToBlackAndBack();
    void theSettingsPageDimsThePanel();
};

void TestFinger::aTouchOnPlayArrivesAtTheBroker()
{
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    machine().touch(PlayPause);
    QVERIFY(waitUntil([&] { return !services.payloads(Topics::command()).isEmpty(); }));
    QCOMPARE(services.payloads(Topics::command()),
        QList<QByteArray>({ R"({"command":"playpause","zone_id":"1601a7c2-hugo2x"})" }));
}

void TestFinger::touchesLeadToTheClockToBlackAndBack()
{
    const QByteArray bright = machine().panel("brightness");
    QCOMPARE(machine().run("date --set='2026-11-18 19:05:00'").status, 0);
    machine().touch(Cover);
    QVERIFY(machine().waitForPage("clock") >= 0);
    QCOMPARE(machine().panel("bl_power"), QByteArray("0"));
    machine().touch(Anywhere);
    QVERIFY(machine().waitForPage("screen-saver") >= 0);
    QVERIFY(machine().standsStillOn("screen-saver"));
    QCOMPARE(machine().panel("bl_power"), QByteArray("1"));
    machine().touch(Anywhere);
    QVERIFY(machine().waitForPage("player") >= 0);
    QCOMPARE(machine().panel("bl_power"), QByteArray("0"));
    QCOMPARE(machine().panel("brightness"), bright);
}

void TestFinger::theSettingsPageDimsThePanel()
{
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    QCOMPARE(machine().panel("brightness"), QByteArray("150"));
    QVERIFY(machine().dim());
    const QByteArray dimmed = machine().panel("brightness");
    QVERIFY2(dimmed.toInt() >= 13 && dimmed.toInt() < 100, dimmed.constData());
    QVERIFY(services.waitFor(Topics::display() + "brightness", dimmed));
}

QTEST_GUILESS_MAIN(TestFinger)
#include "tst_finger.moc"
