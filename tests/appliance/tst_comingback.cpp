// SPDX-License-Identifier: GPL-3.0-or-later
#include "bootedmachine.h"
#include "testkit/waiting.h"

#include <QTest>

#include <memory>

namespace {

/** Longer than the helper sleeps between two looks, so that it has looked. */
constexpr int LookMs = 15000;
/** The agent goes with the machine, so it may not answer. */
constexpr int GoneMs = 3000;
/** So long a connection may last whose broker is frozen, until the front end gives it up. */
constexpr int GivenUpMs = 180000;

} // namespace

/**
 * After whatever befalls broker or front end, the display comes back untouched by anybody: the
 * welcome page soon after the broker accepts connections again, and then the player page.
 */
class TestComingBack : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup() { m_machine.reset(); }

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
    bool does(const char *command) { return m_machine->run(command).status == 0; }

    int restarts() { return m_machine->starts() - m_startsBefore; }

    std::unique_ptr<BootedMachine> m_machine;
    int m_startsBefore = 0;
};

void TestComingBack::init()
{
    m_machine = std::make_unique<BootedMachine>();
    QVERIFY(m_machine->resume());
    QVERIFY(m_machine->waitForPage("player") >= 0);
    m_startsBefore = m_machine->starts();
}

void TestComingBack::brokerLateAtBoot()
{
    QVERIFY(does("mkdir --parents /etc/systemd/system/mosquitto.service.d && "
                 "printf '[Service]\\nExecStartPre=sleep 30\\n' "
                 ">/etc/systemd/system/mosquitto.service.d/late.conf"));
    m_machine->run("systemctl reboot", GoneMs);
    QVERIFY(m_machine->waitForPage("connection-failure", BootedMachine::BootMs) >= 0);
    QVERIFY(m_machine->waitForBroker());
    QVERIFY(m_machine->comesBack());
}

void TestComingBack::brokerRestarted()
{
    QVERIFY(does("systemctl restart mosquitto"));
    QVERIFY(m_machine->waitForBroker());
    QVERIFY(m_machine->comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerKilled()
{
    // As a unit does that cares for its broker; Debian's restarts it only where that is asked for.
    QVERIFY(does("mkdir --parents /run/systemd/system/mosquitto.service.d && "
                 "printf '[Service]\\nRestart=always\\nRestartSec=1\\n' "
                 ">/run/systemd/system/mosquitto.service.d/again.conf && systemctl daemon-reload"));
    QVERIFY(does("systemctl kill --signal=SIGKILL mosquitto"));
    QVERIFY(m_machine->waitForBroker());
    QVERIFY(m_machine->comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerStoppedForAWhile()
{
    QVERIFY(does("systemctl stop mosquitto"));
    QVERIFY(m_machine->waitForPage("connection-failure") >= 0);
    QVERIFY(does("sleep 20"));
    QVERIFY(m_machine->standsStillOn("connection-failure"));
    QCOMPARE(restarts(), 0);
    QVERIFY(does("systemctl start mosquitto"));
    QVERIFY(m_machine->waitForBroker());
    QVERIFY(m_machine->comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerFrozen()
{
    QVERIFY(does("systemctl kill --signal=SIGSTOP mosquitto"));
    QVERIFY(m_machine->waitForPage("connection-failure", GivenUpMs) >= 0);
    QVERIFY(does("systemctl kill --signal=SIGCONT mosquitto"));
    QVERIFY(m_machine->comesBack());
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
    QCOMPARE(m_machine->run("systemctl kill --signal=" + signal + " velunor-touchui").status, 0);
    QVERIFY(m_machine->comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::frontEndFrozen()
{
    const QByteArray process = m_machine->process();
    QVERIFY(does("systemctl kill --signal=SIGSTOP velunor-touchui"));
    QTRY_VERIFY_WITH_TIMEOUT(m_machine->process() != process, BootedMachine::PageMs);
    QVERIFY(m_machine->comesBack());
    QCOMPARE(restarts(), 1);
}

void TestComingBack::brokerBrokenForGood()
{
    QVERIFY(does("echo 'this is no option' >/etc/mosquitto/conf.d/spoilt.conf"));
    QVERIFY(!does("systemctl restart mosquitto"));
    QVERIFY(m_machine->waitForPage("connection-failure") >= 0);
    const QByteArray process = m_machine->process();
    QTest::qWait(2 * LookMs); // what must not happen would happen within this time
    QVERIFY(m_machine->standsStillOn("connection-failure"));
    QCOMPARE(m_machine->process(), process);
    QCOMPARE(restarts(), 0);
}

void TestComingBack::frontEndStoppedByItsUser()
{
    QVERIFY(does("systemctl stop velunor-touchui"));
    QVERIFY(does("systemctl restart mosquitto"));
    QVERIFY(m_machine->waitForBroker());
    QTest::qWait(LookMs); // what must not happen would happen within this time
    QCOMPARE(m_machine->said("systemctl is-active velunor-touchui"), QByteArray("inactive"));
    QCOMPARE(restarts(), 0);
}

void TestComingBack::tenRestartsOfTheBroker()
{
    QVERIFY(does("for i in 1 2 3 4 5 6 7 8 9 10; do systemctl reset-failed mosquitto; "
                 "systemctl restart mosquitto || exit; sleep 5; done"));
    QVERIFY(m_machine->waitForBroker());
    QVERIFY(m_machine->waitForPage("player") >= 0);
    QTest::qWait(LookMs); // no restart is left over
    QVERIFY(m_machine->standsStillOn("player"));
    QVERIFY(restarts() <= 10);
}

QTEST_GUILESS_MAIN(TestComingBack)
#include "tst_comingback.moc"
