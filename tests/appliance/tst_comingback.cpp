// SPDX-License-Identifier: GPL-3.0-or-later
#include "machinetest.h"
#include "testkit/waiting.h"

#include <QTest>

namespace {

/** Longer than the helper sleeps between two looks, so that it has looked. */
constexpr int LookMs = 15000;
/** So long a connection may last whose broker is frozen, until the front end gives it up. */
constexpr int GivenUpMs = 180000;

} // namespace

/**
 * After whatever befalls broker or front end, the display comes back untouched by anybody: the
 * welcome page soon after the broker accepts connections again, and then the player page.
 */
class TestComingBack : public MachineTest {
    Q_OBJECT

private slots:
    void init();

    void brokerLateAtBoot();
    void brokerRestarted();
    void brokerKilled();
    void brokerStoppedForAWhile();
    void brokerFrozen();
    void frontEndKilled_data();
    void frontEndKilled();
    void frontEndFrozen();
    void brokerBrokenForGood();
    void frontEndStoppedByItsUser();
    void tenRestartsOfTheBroker();

private:
    int restarts() { return machine().starts() - m_startsBefore; }

    int m_startsBefore = 0;
};

void TestComingBack::init()
{
    MachineTest::init();
    if (QTest::currentTestFailed())
        return;
    m_startsBefore = machine().starts();
}

void TestComingBack::brokerLateAtBoot()
{
    QVERIFY(does("mkdir --parents /etc/systemd/system/mosquitto.service.d && "
                 "printf '[Service]\\nExecStartPre=sleep 30\\n' "
                 ">/etc/systemd/system/mosquitto.service.d/late.conf"));
    machine().bringDown("systemctl reboot");
    QVERIFY(machine().waitForPage("connection-failure", BootedMachine::BootMs) >= 0);
    QVERIFY(machine().waitForBroker());
    QVERIFY(machine().comesBack());
}

void TestComingBack::brokerRestarted()
{
    QVERIFY(does("systemctl restart mosquitto"));
    QVERIFY(machine().waitForBroker());
    QVERIFY(machine().comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerKilled()
{
    // As a unit does that cares for its broker; Debian's restarts it only where that is asked for.
    QVERIFY(does("mkdir --parents /run/systemd/system/mosquitto.service.d && "
                 "printf '[Service]\\nRestart=always\\nRestartSec=1\\n' "
                 ">/run/systemd/system/mosquitto.service.d/again.conf && systemctl daemon-reload"));
    QVERIFY(does("systemctl kill --signal=SIGKILL mosquitto"));
    QVERIFY(machine().waitForBroker());
    QVERIFY(machine().comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerStoppedForAWhile()
{
    QVERIFY(does("systemctl stop mosquitto"));
    QVERIFY(machine().waitForPage("connection-failure") >= 0);
    QVERIFY(does("sleep 20"));
    QVERIFY(machine().standsStillOn("connection-failure"));
    QCOMPARE(restarts(), 0);
    QVERIFY(does("systemctl start mosquitto"));
    QVERIFY(machine().waitForBroker());
    QVERIFY(machine().comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerFrozen()
{
    QVERIFY(does("systemctl kill --signal=SIGSTOP mosquitto"));
    QVERIFY(machine().waitForPage("connection-failure", GivenUpMs) >= 0);
    QVERIFY(does("systemctl kill --signal=SIGCONT mosquitto"));
    QVERIFY(machine().comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::frontEndKilled_data()
{
    QTest::addColumn<QString>("signal");
    QTest::newRow("SIGKILL") << "SIGKILL";
    QTest::newRow("SIGSEGV") << "SIGSEGV";
}

void TestComingBack::frontEndKilled()
{
    QFETCH(QString, signal);
    QVERIFY(does("systemctl kill --signal=" + signal + " velunor-touchui"));
    QVERIFY(machine().comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::frontEndFrozen()
{
    const QByteArray process = machine().process();
    QVERIFY(does("systemctl kill --signal=SIGSTOP velunor-touchui"));
    QTRY_VERIFY_WITH_TIMEOUT(machine().process() != process, BootedMachine::PageMs);
    QVERIFY(machine().comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerBrokenForGood()
{
    QVERIFY(does("echo 'this is no option' >/etc/mosquitto/conf.d/spoilt.conf"));
    QVERIFY(!does("systemctl restart mosquitto"));
    QVERIFY(machine().waitForPage("connection-failure") >= 0);
    const QByteArray process = machine().process();
    QTest::qWait(2 * LookMs); // what must not happen would happen within this time
    QVERIFY(machine().standsStillOn("connection-failure"));
    QCOMPARE(machine().process(), process);
    QCOMPARE(restarts(), 0);
}

void TestComingBack::frontEndStoppedByItsUser()
{
    QVERIFY(does("systemctl stop velunor-touchui"));
    QVERIFY(does("systemctl restart mosquitto"));
    QVERIFY(machine().waitForBroker());
    QTest::qWait(LookMs); // what must not happen would happen within this time
    QCOMPARE(machine().said("systemctl is-active velunor-touchui"), QByteArray("inactive"));
    QCOMPARE(restarts(), 0);
}

void TestComingBack::tenRestartsOfTheBroker()
{
    QVERIFY(does("for i in 1 2 3 4 5 6 7 8 9 10; do systemctl reset-failed mosquitto; "
                 "systemctl restart mosquitto || exit; sleep 5; done"));
    QVERIFY(machine().waitForBroker());
    QVERIFY(machine().waitForPage("player") >= 0);
    QTest::qWait(LookMs); // no restart is left over
    QVERIFY(machine().standsStillOn("player"));
    QVERIFY(restarts() <= 10);
}

QTEST_GUILESS_MAIN(TestComingBack)
#include "tst_comingback.moc"
