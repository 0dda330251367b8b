// SPDX-License-Identifier: GPL-3.0-or-later
#include "bootedmachine.h"

#include <QTest>

/** From the power switch to the player page. The other tests go on from there. */
class TestFirstPicture : public QObject {
    Q_OBJECT

private slots:
    void theMachineComesUpByItself();
};

void TestFirstPicture::theMachineComesUpByItself()
{
    BootedMachine machine;
    QVERIFY(machine.start());
    const qint64 player = machine.waitForPage("player", BootedMachine::BootMs);
    QVERIFY(player >= 0);
    QVERIFY(machine.standsStillOn("player"));
    qInfo("player page %.0f s after the power switch, %s", double(player) / 1000,
        machine.isEmulated() ? "emulated" : "KVM");

    QVERIFY(machine.waitForAgent(BootedMachine::BootMs));
    QCOMPARE(machine.said("systemctl is-system-running --wait"), QByteArray("running"));
    QCOMPARE(machine.run("velunor-touchui-doctor").status, 0);
    QCOMPARE(machine.starts(), 1);
    QVERIFY(machine.keepIn(BootedMachine::kept()));
}

QTEST_GUILESS_MAIN(TestFirstPicture)
#include "tst_firstpicture.moc"
