// SPDX-License-Identifier: GPL-3.0-or-later
#include "bootedmachine.h"
#include "simulator/services/topics.h"
#include "testkit/services/brokerclient.h"
#include "testkit/waiting.h"

#include <QTest>

#include <memory>

namespace {

const QPoint PlayPause(604, 343);
const QPoint Cover(205, 275);
const QPoint Anywhere(400, 240);
const QPoint SettingsCorner(790, 470);
const QPoint HandleOfBrightness(438, 143);
const QPoint LowBrightness(300, 143);

} // namespace

/** What a finger on the glass leads to: at the broker, on the panel and in the kernel's files. */
class TestFinger : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_machine.reset(); }

    void aTouchOnPlayArrivesAtTheBroker();
    void touchesLeadToTheClockToBlackAndBack();
    void theSettingsPageDimsThePanel();

private:
    QByteArray panel(const char *attribute)
    {
        return m_machine->said(QStringLiteral("cat /sys/class/backlight/panel/") + attribute);
    }

    std::unique_ptr<BootedMachine> m_machine;
};

void TestFinger::init()
{
    m_machine = std::make_unique<BootedMachine>();
    QVERIFY(m_machine->resume());
    QVERIFY(m_machine->waitForPage("player") >= 0);
}

void TestFinger::aTouchOnPlayArrivesAtTheBroker()
{
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    m_machine->touch(PlayPause);
    QVERIFY(waitUntil([&] { return services.payloads(Topics::command()).size() > 0; }));
    QCOMPARE(services.payloads(Topics::command()),
        QList<QByteArray>({ R"({"command":"playpause","zone_id":"1601a7c2-hugo2x"})" }));
}

void TestFinger::touchesLeadToTheClockToBlackAndBack()
{
    const QByteArray bright = panel("brightness");
    QCOMPARE(m_machine->run("date --set='2026-11-18 19:05:00'").status, 0);
    m_machine->touch(Cover);
    QVERIFY(m_machine->waitForPage("clock") >= 0);
    QCOMPARE(panel("bl_power"), QByteArray("0"));
    m_machine->touch(Anywhere);
    QVERIFY(m_machine->waitForPage("screen-saver") >= 0);
    QVERIFY(m_machine->standsStillOn("screen-saver"));
    QCOMPARE(panel("bl_power"), QByteArray("1"));
    m_machine->touch(Anywhere);
    QVERIFY(m_machine->waitForPage("player") >= 0);
    QCOMPARE(panel("bl_power"), QByteArray("0"));
    QCOMPARE(panel("brightness"), bright);
}

void TestFinger::theSettingsPageDimsThePanel()
{
    BrokerClient services;
    QVERIFY(services.connectToBroker());
    QCOMPARE(panel("brightness"), QByteArray("150"));
    m_machine->touch(SettingsCorner);
    QVERIFY(m_machine->waitForPage("settings") >= 0);
    m_machine->draw(HandleOfBrightness, LowBrightness);
    QVERIFY(waitUntil([this] { return panel("brightness") != "150"; }));
    const QByteArray dimmed = panel("brightness");
    QVERIFY2(dimmed.toInt() >= 13 && dimmed.toInt() < 100, dimmed.constData());
    QVERIFY(services.waitFor(Topics::display() + "brightness", dimmed));
}

QTEST_GUILESS_MAIN(TestFinger)
#include "tst_finger.moc"
