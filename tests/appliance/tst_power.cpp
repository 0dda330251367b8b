// SPDX-License-Identifier: GPL-3.0-or-later
#include "machinetest.h"
#include "testkit/waiting.h"

#include <QRegularExpression>
#include <QTest>

namespace {

const QPoint Save(710, 425); // on the settings page
const QByteArray OldSettings = "[LCD]\nBrightness=150\nClockBrightness=150\n";
const QString File = "/data/velunor-touch.ini";
constexpr double StopLimit = 5; // seconds, as the unit has it
constexpr int PowerOffMs = 60000;

} // namespace

/** The end of the power, ordered and not, and what it leaves on the disk. */
class TestPower : public MachineTest {
    Q_OBJECT

private slots:
    void init();

    void rebootAndPowerOffAreOrderly();
    void aCutWhileSavingLeavesOldOrNewSettings_data();
    void aCutWhileSavingLeavesOldOrNewSettings();

private:
    /** Whether that is a settings file with another brightness than the old one. */
    static bool isNew(const QByteArray &settings);
};

void TestPower::init()
{
    MachineTest::init();
    if (QTest::currentTestFailed())
        return;
    QVERIFY(does(QStringLiteral("printf '%1' >%2 && chown velunor-touchui: %2 && sync")
                     .arg(QString(OldSettings).replace("\n", "\\n"), File)));
}

bool TestPower::isNew(const QByteArray &settings)
{
    const QRegularExpression form("^\\[LCD\\]\nBrightness=(\\d+)\nClockBrightness=150\n$");
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(settings));
    return match.hasMatch() && match.captured(1) != "150";
}

void TestPower::rebootAndPowerOffAreOrderly()
{
    QVERIFY(machine().dim());
    machine().touch(Save);
    QVERIFY(machine().waitForPage("player") >= 0);
    const QByteArray saved = machine().said("cat " + File) + '\n';
    QVERIFY(isNew(saved));

    machine().bringDown("systemctl reboot");
    // The last picture stays on view for a while.
    QVERIFY(machine().waitForAgent(BootedMachine::BootMs));
    QVERIFY(machine().waitForPage("player", BootedMachine::BootMs) >= 0);
    QCOMPARE(machine().said("cat " + File) + '\n', saved);
    const QByteArray stop = machine().said(
        "journalctl --boot=-1 --unit=velunor-touchui --output=short-monotonic --no-hostname "
        "--no-pager --grep='^(Stopping|Stopped|velunor-touchui.service: )'");
    const QRegularExpression stopping("\\[ *([0-9.]+)\\] systemd\\S* Stopping");
    const QRegularExpression stopped("\\[ *([0-9.]+)\\] systemd\\S* Stopped");
    const double began = stopping.match(stop).captured(1).toDouble();
    const double ended = stopped.match(stop).captured(1).toDouble();
    QVERIFY2(began > 0 && ended >= began && ended - began < StopLimit, stop.constData());
    QVERIFY2(!stop.contains("timed out") && !stop.contains("Failed"), stop.constData());

    machine().bringDown("systemctl poweroff");
    QVERIFY(machine().waitForPowerOff(PowerOffMs));
    QCOMPARE(machine().faultsOfDisk(), QByteArray());
    QCOMPARE(machine().fileOnDisk(File), saved);
}

void TestPower::aCutWhileSavingLeavesOldOrNewSettings_data()
{
    QTest::addColumn<int>("afterMs");
    // The kernel writes what is new after some five seconds.
    for (const int after : { 0, 300, 1000, 5000, 6000, 12000 })
        QTest::addRow("%d ms after the touch", after) << after;
}

void TestPower::aCutWhileSavingLeavesOldOrNewSettings()
{
    QFETCH(int, afterMs);
    QVERIFY(machine().dim());
    machine().touch(Save);
    QTest::qWait(afterMs); // the moment of the cut is what the rows differ in
    machine().cutPower();
    const QByteArray left = machine().fileOnDisk(File);
    QVERIFY2(left == OldSettings || isNew(left), left.constData());
    qInfo("%s settings are left", left == OldSettings ? "the old" : "the new");
}

QTEST_GUILESS_MAIN(TestPower)
#include "tst_power.moc"
