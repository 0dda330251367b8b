// SPDX-License-Identifier: GPL-3.0-or-later
#include "bootedmachine.h"
#include "testkit/waiting.h"

#include <QRegularExpression>
#include <QTest>

#include <memory>

namespace {

// Places on the player and the settings page.
const QPoint SettingsCorner(790, 470);
const QPoint HandleOfBrightness(438, 143);
const QPoint LowBrightness(300, 143);
const QPoint Save(710, 425);

const QByteArray OldSettings = "[LCD]\nBrightness=150\nClockBrightness=150\n";
const QString File = "/data/velunor-touch.ini";
constexpr double StopLimit = 5; // seconds, as the unit has it
/** The agent goes with the machine, so it may not answer. */
constexpr int GoneMs = 3000;
constexpr int PowerOffMs = 60000;

} // namespace

/** The end of the power, ordered and not, and what it leaves on the disk. */
class TestPower : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_machine.reset(); }

    void rebootAndPowerOffAreOrderly();
    void aCutWhileSavingLeavesOldOrNewSettings_data();
    void aCutWhileSavingLeavesOldOrNewSettings();

private:
    /** Leads to the settings page and changes the brightness there. */
    bool changeBrightness();
    /** Whether that is a settings file with another brightness than the old one. */
    static bool isNew(const QByteArray &settings);

    std::unique_ptr<BootedMachine> m_machine;
};

void TestPower::init()
{
    m_machine = std::make_unique<BootedMachine>();
    QVERIFY(m_machine->resume());
    QVERIFY(m_machine->waitForPage("player") >= 0);
    QCOMPARE(m_machine
                 ->run(QStringLiteral("printf '%1' >%2 && chown velunor-touchui: %2 && sync")
                           .arg(QString(OldSettings).replace("\n", "\\n"), File))
                 .status,
        0);
}

bool TestPower::changeBrightness()
{
    const QByteArray brightness = m_machine->said("cat /sys/class/backlight/panel/brightness");
    m_machine->touch(SettingsCorner);
    if (m_machine->waitForPage("settings") < 0)
        return false;
    m_machine->draw(HandleOfBrightness, LowBrightness);
    return waitUntil(
        [&] { return m_machine->said("cat /sys/class/backlight/panel/brightness") != brightness; });
}

bool TestPower::isNew(const QByteArray &settings)
{
    const QRegularExpression form("^\\[LCD\\]\nBrightness=(\\d+)\nClockBrightness=150\n$");
    const QRegularExpressionMatch match = form.match(QString::fromLatin1(settings));
    return match.hasMatch() && match.captured(1) != "150";
}

void TestPower::rebootAndPowerOffAreOrderly()
{
    QVERIFY(changeBrightness());
    m_machine->touch(Save);
    QVERIFY(m_machine->waitForPage("player") >= 0);
    const QByteArray saved = m_machine->said("cat " + File) + '\n';
    QVERIFY(isNew(saved));

    m_machine->run("systemctl reboot", GoneMs);
    // The last picture stays on view for a while.
    QVERIFY(m_machine->waitForAgent(BootedMachine::BootMs));
    QVERIFY(m_machine->waitForPage("player", BootedMachine::BootMs) >= 0);
    QCOMPARE(m_machine->said("cat " + File) + '\n', saved);
    const QByteArray stop = m_machine->said(
        "journalctl --boot=-1 --unit=velunor-touchui --output=short-monotonic --no-hostname "
        "--no-pager --grep='^(Stopping|Stopped|velunor-touchui.service: )'");
    const QRegularExpression stopping("\\[ *([0-9.]+)\\] systemd\\S* Stopping");
    const QRegularExpression stopped("\\[ *([0-9.]+)\\] systemd\\S* Stopped");
    const double began = stopping.match(stop).captured(1).toDouble();
    const double ended = stopped.match(stop).captured(1).toDouble();
    QVERIFY2(began > 0 && ended >= began && ended - began < StopLimit, stop.constData());
    QVERIFY2(!stop.contains("timed out") && !stop.contains("Failed"), stop.constData());

    m_machine->run("systemctl poweroff", GoneMs);
    QVERIFY(m_machine->waitForPowerOff(PowerOffMs));
    QCOMPARE(m_machine->faultsOfDisk(), QByteArray());
    QCOMPARE(m_machine->fileOnDisk(File), saved);
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
    QVERIFY(changeBrightness());
    m_machine->touch(Save);
    QTest::qWait(afterMs); // the moment of the cut is what the rows differ in
    m_machine->cutPower();
    const QByteArray left = m_machine->fileOnDisk(File);
    QVERIFY2(left == OldSettings || isNew(left), left.constData());
    qInfo("%s settings are left", left == OldSettings ? "the old" : "the new");
}

QTEST_GUILESS_MAIN(TestPower)
#include "tst_power.moc"
