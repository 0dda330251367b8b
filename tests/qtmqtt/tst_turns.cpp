// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "listener.h"
#include "oursalone.h"
#include "testkit/waiting.h"
#include "wirepeer.h"

#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <algorithm>
#include <functional>

namespace {
constexpr int PacketsPerTurn = 512;

/** Counts what others, who wait for their turn in the event loop, see of a number that grows. */
class Turns {
public:
    explicit Turns(std::function<int()> number)
        : m_number(std::move(number))
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            const int now = m_number();
            m_steps += now > m_last ? 1 : 0;
            m_largestStep = std::max(m_largestStep, now - m_last);
            m_last = now;
        });
        m_timer.start(0);
    }

    /** The number as it was when others had their last turn. */
    int last() const { return m_last; }
    int steps() const { return m_steps; }
    int largestStep() const { return m_largestStep; }

private:
    std::function<int()> m_number;
    QTimer m_timer;
    int m_last = 0;
    int m_steps = 0;
    int m_largestStep = 0;
};

/** The messages from @p first up to, but not with, @p end, as a broker sends them in one go. */
QByteArray messages(int first, int end)
{
    QByteArray packets;
    for (int i = first; i < end; ++i)
        packets += FakeBroker::message("t", QByteArray::number(i));
    return packets;
}
} // namespace

/** However much there is to read, timers, touches and frames get their turn in between. */
class TestTurns : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void messagesLeaveOthersTheirTurn();
    void slowSlotsLeaveOthersTheirTurn();
    void confirmationsLeaveOthersTheirTurn();
    void backlogOfAWaitingSlotLeavesOthersTheirTurn();
    void acknowledgedMessagesComeInBulk();
};

void TestTurns::initTestCase()
{
    OURS_ALONE("the module reads all that there is in one turn");
}

void TestTurns::messagesLeaveOthersTheirTurn()
{
    constexpr int Count = 20000;
    FakeBroker peer;
    Listener listener(peer.port());
    const QByteArray backlog = messages(0, Count);
    const Turns turns([&] { return listener.received.size(); });
    peer.send(backlog);
    QTRY_COMPARE_WITH_TIMEOUT(listener.received.size(), Count, PatienceMs);
    QVERIFY(listener.payloads() == numbers(Count));
    QVERIFY2(
        turns.largestStep() <= PacketsPerTurn, qPrintable(QString::number(turns.largestStep())));
}

/** What an application makes of a message may take its time: then a turn has few of them. */
void TestTurns::slowSlotsLeaveOthersTheirTurn()
{
    constexpr int Count = 200;
    FakeBroker peer;
    Listener listener(peer.port());
    connect(&listener.client, &QMqttClient::messageReceived, this, [] { QThread::msleep(5); });
    const Turns turns([&] { return listener.received.size(); });
    peer.send(messages(0, Count));
    QTRY_COMPARE_WITH_TIMEOUT(listener.received.size(), Count, PatienceMs);
    QVERIFY2(turns.largestStep() <= 3, qPrintable(QString::number(turns.largestStep())));
}

void TestTurns::confirmationsLeaveOthersTheirTurn()
{
    constexpr int Count = 5000;
    QByteArray confirmations;
    WirePeer peer([&](WirePeer &self) {
        self.accept();
        for (int i = 0; i < Count; ++i)
            confirmations += QByteArray::fromHex("4002") + self.readPacket().mid(5, 2);
        self.send(confirmations);
        while (!self.readPacket().isEmpty()) { }
    });
    {
        Listener listener(peer.port());
        int confirmed = 0;
        connect(&listener.client, &QMqttClient::messageSent, this, [&] { ++confirmed; });
        for (int i = 0; i < Count; ++i)
            QVERIFY(listener.client.publish(QLatin1String("t"), "x", 1) > 0);
        const Turns turns([&] { return confirmed; });
        QTRY_COMPARE_WITH_TIMEOUT(confirmed, Count, PatienceMs);
        QVERIFY2(turns.largestStep() <= PacketsPerTurn,
            qPrintable(QString::number(turns.largestStep())));
    }
}

/** What has come while a slot waited is read by then, and waits to be delivered. */
void TestTurns::backlogOfAWaitingSlotLeavesOthersTheirTurn()
{
    constexpr int Count = 20000;
    FakeBroker peer;
    Listener listener(peer.port());
    const QByteArray backlog = messages(1, Count);
    bool waited = false;
    connect(&listener.client, &QMqttClient::messageReceived, this, [&](const QByteArray &payload) {
        if (payload != "0")
            return;
        peer.send(backlog + QByteArray(2, '\0')); // no such packet, so the client hangs up
        waited = QTest::qWaitFor([&] { return peer.isDeserted(); }, PatienceMs);
    });
    const Turns turns([&] { return listener.received.size(); });
    peer.send(FakeBroker::message("t", "0"));
    QTRY_COMPARE_WITH_TIMEOUT(listener.client.state(), QMqttClient::Disconnected, PatienceMs);
    QVERIFY(waited);
    QVERIFY(listener.payloads() == numbers(Count));
    QTRY_COMPARE(turns.last(), Count);
    // The rest of the turn that the slot was in, and one more that comes before timers.
    QVERIFY2(
        turns.largestStep() < 2 * PacketsPerTurn, qPrintable(QString::number(turns.largestStep())));
}

/** And the other way round: a turn is used, also after hundreds of packets were sent. */
void TestTurns::acknowledgedMessagesComeInBulk()
{
    constexpr int Count = 5000;
    FakeBroker peer;
    Listener listener(peer.port());
    QByteArray backlog;
    for (int i = 1; i <= Count; ++i) {
        backlog += QByteArray::fromHex("3206000174");
        backlog += char(i >> 8);
        backlog += char(i & 0xff);
        backlog += 'x';
    }
    const Turns turns([&] { return listener.received.size(); });
    peer.send(backlog);
    QTRY_COMPARE_WITH_TIMEOUT(listener.received.size(), Count, PatienceMs);
    QVERIFY2(turns.steps() < Count / 10, qPrintable(QString::number(turns.steps())));
    QVERIFY(turns.largestStep() <= PacketsPerTurn);
}

QTEST_GUILESS_MAIN(TestTurns)
#include "tst_turns.moc"
