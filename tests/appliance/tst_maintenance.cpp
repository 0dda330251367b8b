// SPDX-License-Identifier: GPL-3.0-or-later
#include "machinetest.h"
#include "testkit/waiting.h"

#include <QTest>

/** Upgrade, removal and purge of the package on a machine that shows its display. */
class TestMaintenance : public MachineTest {
    Q_OBJECT

private slots:
    void init();

    void anUpgradeShowsTheNewProgram();
    void aRemovalKeepsTheSettingsAndAPurgeDoesNot();
};

void TestMaintenance::init()
{
    MachineTest::init();
    if (QTest::currentTestFailed())
        return;
    QVERIFY(does("printf '[LCD]\\nBrightness=77\\n' >/data/velunor-touch.ini"));
}

void TestMaintenance::anUpgradeShowsTheNewProgram()
{
    const QByteArray process = machine().process();
    QVERIFY(does("dpkg --install /root/velunor-touchui.deb"));
    QVERIFY(machine().comesBack());
    QVERIFY(machine().process() != process);
    QVERIFY(does("grep --quiet '^Brightness=77' /data/velunor-touch.ini"));
    QCOMPARE(machine().panel("brightness"), QByteArray("77"));
    QCOMPARE(machine().said("systemctl --failed --plain --no-legend"), QByteArray());
}

void TestMaintenance::aRemovalKeepsTheSettingsAndAPurgeDoesNot()
{
    QVERIFY(does("dpkg --remove velunor-touchui"));
    // As long as their processes live, they have a control group.
    QCOMPARE(machine().said("ls -d /sys/fs/cgroup/system.slice/velunor-touchui* 2>/dev/null"),
        QByteArray());
    QVERIFY(does("grep --quiet '^Brightness=77' /data/velunor-touch.ini"));
    QVERIFY(does("dpkg --purge velunor-touchui"));
    QCOMPARE(machine().said("ls -d /data /etc/default/velunor-touchui /var/cache/velunor-touchui "
                            "/run/velunor-touchui* 2>/dev/null; "
                            "systemctl list-unit-files --no-legend 'velunor-touchui*'"),
        QByteArray());
    QCOMPARE(machine().said("systemctl --failed --plain --no-legend"), QByteArray());
    // The broker does not miss what it wanted.
    QVERIFY(does("systemctl restart mosquitto"));
}

QTEST_GUILESS_MAIN(TestMaintenance)
#include "tst_maintenance.moc"
