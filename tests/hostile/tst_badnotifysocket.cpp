// SPDX-License-Identifier: GPL-3.0-or-later
#include "ordeal.h"
#include "testkit/services/notifysocket.h"

#include <functional>

using namespace PageNames;

using Act = std::function<void(NotifySocket &)>;
Q_DECLARE_METATYPE(Act)

/** A service manager that has gone, or does not listen. */
class TestBadNotifySocket : public Ordeal {
    Q_OBJECT

private slots:
    void doesNoHarm_data();
    void doesNoHarm();
};

void TestBadNotifySocket::doesNoHarm_data()
{
    QTest::addColumn<Act>("before"); // the program starts
    QTest::addColumn<Act>("later");  // while it runs
    const Act nothing = [](NotifySocket &) {};
    const Act vanish = [](NotifySocket &socket) { socket.vanish(); };
    const Act fill = [](NotifySocket &socket) { socket.fill(); };
    QTest::newRow("never there") << vanish << nothing;
    QTest::newRow("gone while it runs") << nothing << vanish;
    QTest::newRow("not read any more") << nothing << fill;
}

void TestBadNotifySocket::doesNoHarm()
{
    QFETCH(Act, before);
    QFETCH(Act, later);
    NotifySocket serviceManager;
    before(serviceManager);
    program().setEnvironment("NOTIFY_SOCKET", serviceManager.path());
    QVERIFY(startPlayer());
    later(serviceManager);
    // A keep-alive that finds no place waits for one; it says so first.
    QVERIFY(program().waitForLine(
        Line::debug("SystemdWatchdog::WorkerThread::PING"), program().logSize()));
    QVERIFY(comesThrough(Player, UsualBound));
}

QTEST_GUILESS_MAIN(TestBadNotifySocket)
#include "tst_badnotifysocket.moc"
