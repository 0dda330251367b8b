// SPDX-License-Identifier: GPL-3.0-or-later
#include "bootedmachine.h"
#include "testkit/waiting.h"

#include <QTest>

#include <memory>

/** Upgrade, removal and purge of the package on a machine that shows its display. */
class TestMaintenance : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_machine.reset(); }

    void anUpgradeShowsTheNewProgram();
    void aRemovalKeepsTheSettingsAndAPurgeDoesNot();

private:
    bool does(const QString &command);

    std::unique_ptr<BootedMachine> m_machine;
};

bool TestMaintenance::does(const QString &command)
{
    const VirtualMachine::Outcome outcome = m_machine->run(command);
    if (outcome.status != 0)
        qWarning("%s: %d\n%s", qUtf8Printable(command), outcome.status, outcome.output.constData());
    return outcome.status == 0;
}

void TestMaintenance::init()
{
    m_machine = std::make_unique<BootedMachine>();
    QVERIFY(m_machine->resume());
    QVERIFY(m_machine->waitForPage("player") >= 0);
    QVERIFY(does("printf '[LCD]\\nBrightness=77\\n' >/data/velunor-touch.ini"));
}

void TestMaintenance::anUpgradeShowsTheNewProgram()
{
    const QByteArray process = m_machine->process();
    QVERIFY(does("dpkg --install /root/velunor-touchui.deb"));
    QVERIFY(m_machine->comesBack());
    QVERIFY(m_machine->process() != process);
    QVERIFY(does("grep --quiet '^Brightness=77' /data/velunor-touch.ini"));
    QCOMPARE(m_machine->said("cat /sys/class/backlight/panel/brightness"), QByteArray("77"));
    QCOMPARE(m_machine->said("systemctl --failed --plain --no-legend"), QByteArray());
}

void TestMaintenance::aRemovalKeepsTheSettingsAndAPurgeDoesNot()
{
    QVERIFY(does("dpkg --remove velunor-touchui"));
    // As long as their processes live, they have a control group.
    QCOMPARE(m_machine->said("ls -d /sys/fs/cgroup/system.slice/velunor-touchui* 2>/dev/null"),
        QByteArray());
    QVERIFY(does("grep --quiet '^Brightness=77' /data/velunor-touch.ini"));
    QVERIFY(does("dpkg --purge velunor-touchui"));
    QCOMPARE(m_machine->said("ls -d /data /etc/default/velunor-touchui /var/cache/velunor-touchui "
                             "/run/velunor-touchui* 2>/dev/null; "
                             "systemctl list-unit-files --no-legend 'velunor-touchui*'"),
        QByteArray());
    QCOMPARE(m_machine->said("systemctl --failed --plain --no-legend"), QByteArray());
    // The broker does not miss what it wanted.
    QVERIFY(does("systemctl restart mosquitto"));
}

QTEST_GUILESS_MAIN(TestMaintenance)
#include "tst_maintenance.moc"
