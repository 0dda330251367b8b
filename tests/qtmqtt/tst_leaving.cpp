// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"
#include "fakebroker.h"
#include "listener.h"
#include "mosquittoprocess.h"
#include "oursalone.h"
#include "testkit/waiting.h"
#include "wirepeer.h"

#include <QtCore/QElapsedTimer>
#include <QtTest/QtTest>

#include <atomic>
#include <csignal>

#include <sys/time.h>

namespace {
constexpr int FloodMs = 20000;        // longer than leaving may take
constexpr int LeavingLimitMs = 15000; // the classes' own limits, and some room for a busy machine

/** Interrupts what the main thread waits for, again and again. */
class Interruptions {
public:
    Interruptions()
    {
        struct sigaction action = {};
        action.sa_handler = [](int) {};
        sigaction(SIGALRM, &action, &m_before);
        const itimerval often { { 0, 500 }, { 0, 500 } };
        setitimer(ITIMER_REAL, &often, nullptr);
    }
    ~Interruptions()
    {
        const itimerval never {};
        setitimer(ITIMER_REAL, &never, nullptr);
        sigaction(SIGALRM, &m_before, nullptr);
    }

private:
    Q_DISABLE_COPY(Interruptions)
    struct sigaction m_before = {};
};

/** The confirmation of a published message whose topic is one character long. */
QByteArray confirmation(const QByteArray &packet)
{
    return QByteArray::fromHex("4002") + packet.mid(5, 2);
}

quint8 type(const QByteArray &packet)
{
    return packet.isEmpty() ? 0 : quint8(packet.at(0)) & 0xf0;
}
} // namespace

/** Leaving a broker that is busy: all goes out, and it ends. */
class TestLeaving : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void floodDoesNotHoldUs_data();
    void floodDoesNotHoldUs();
    void floodThatDoesNotReadDoesNotHoldUs();
    void backlogIsWrittenBeforeTheFarewell_data();
    void backlogIsWrittenBeforeTheFarewell();
    void farewellWaitsForTheConfirmationDespiteSignals();
    void nothingIsLostDespiteSignals();
    void ownEchoDestroysNothing();
};

void TestLeaving::initTestCase()
{
    OURS_ALONE("the module may close with something unread, which loses messages");
}

void TestLeaving::floodDoesNotHoldUs_data()
{
    QTest::addColumn<int>("qos"); // of a message that is never confirmed
    QTest::addColumn<QByteArray>("packet");
    const QByteArray acknowledged = QByteArray::fromHex("3206000174000178");
    QTest::newRow("nothing to wait for") << 0 << FakeBroker::message("t", "x");
    QTest::newRow("an answer to wait for") << 1 << FakeBroker::message("t", "x");
    QTest::newRow("acknowledgements, nothing to wait for") << 0 << acknowledged;
    QTest::newRow("acknowledgements, an answer to wait for") << 1 << acknowledged;
}

void TestLeaving::floodDoesNotHoldUs()
{
    QFETCH(int, qos);
    QFETCH(QByteArray, packet);
    bool saidFarewell = false;
    WirePeer peer([&](WirePeer &self) {
        self.accept();
        QByteArray flood;
        for (int i = 0; i < 1000; ++i)
            flood += packet;
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < FloodMs && !saidFarewell && self.send(flood)) {
            while (self.hears(0)) {
                const QByteArray answer = self.readPacket();
                saidFarewell |= type(answer) == FakeBroker::Disconnect;
                if (answer.isEmpty())
                    return;
            }
        }
    });
    QMqttClient client;
    aim(&client, peer.port());
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    client.publish(QLatin1String("t"), "x", quint8(qos));
    QElapsedTimer time;
    time.start();
    client.disconnectFromHost();
    QVERIFY2(time.elapsed() < LeavingLimitMs, qPrintable(QString::number(time.elapsed())));
    peer.join();
    QVERIFY(saidFarewell);
}

/** What comes in does not prolong the wait for a broker that takes nothing. */
void TestLeaving::floodThatDoesNotReadDoesNotHoldUs()
{
    std::atomic<bool> hasLeft { false };
    WirePeer peer([&](WirePeer &self) {
        self.accept();
        QByteArray flood;
        for (int i = 0; i < 1000; ++i)
            flood += FakeBroker::message("t", "x");
        QElapsedTimer time;
        time.start();
        while (time.elapsed() < FloodMs && !hasLeft && self.send(flood)) { }
    });
    QMqttClient client;
    aim(&client, peer.port());
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    client.publish(QLatin1String("t"), QByteArray(64 << 20, 'x')); // more than the sockets hold
    QElapsedTimer time;
    time.start();
    client.disconnectFromHost();
    hasLeft = true;
    QVERIFY2(time.elapsed() < LeavingLimitMs, qPrintable(QString::number(time.elapsed())));
}

void TestLeaving::backlogIsWrittenBeforeTheFarewell_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("size");
    QTest::newRow("three large ones") << 3 << (8 << 20);
    QTest::newRow("many") << 20000 << 1000;
}

void TestLeaving::backlogIsWrittenBeforeTheFarewell()
{
    QFETCH(int, count);
    QFETCH(int, size);
    int complete = 0;
    quint8 last = 0;
    WirePeer peer([&](WirePeer &self) {
        self.accept();
        QByteArray packet;
        do {
            self.send(FakeBroker::message("t", "meanwhile"));
            packet = self.readPacket();
            complete += type(packet) == FakeBroker::Publish && packet.size() > size ? 1 : 0;
            last = packet.isEmpty() ? last : type(packet);
        } while (!packet.isEmpty());
    });
    QMqttClient client;
    aim(&client, peer.port());
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    const QByteArray payload(size, 'x'); // together more than the sockets hold
    for (int i = 0; i < count; ++i)
        QCOMPARE(client.publish(QLatin1String("t"), payload), 0);
    client.disconnectFromHost();
    peer.join();
    QCOMPARE(complete, count);
    QCOMPARE(last, quint8(FakeBroker::Disconnect));
}

void TestLeaving::farewellWaitsForTheConfirmationDespiteSignals()
{
    bool hurried = true;
    quint8 last = 0;
    WirePeer peer([&](WirePeer &self) {
        self.accept();
        const QByteArray message = self.readPacket();
        hurried = self.hears(100); // something before its message is confirmed
        self.send(confirmation(message));
        last = type(self.readPacket());
    });
    QMqttClient client;
    aim(&client, peer.port());
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    QVERIFY(client.publish(QLatin1String("t"), "x", 1) > 0);
    {
        const Interruptions interruptions;
        client.disconnectFromHost();
    }
    peer.join();
    QVERIFY(!hurried);
    QCOMPARE(last, quint8(FakeBroker::Disconnect));
}

void TestLeaving::nothingIsLostDespiteSignals()
{
    constexpr int Count = 100;
    MosquittoProcess broker;
    QVERIFY(broker.start());
    Listener observer(broker.port());
    observer.subscribe("leaving");
    for (int round = 0; round < 40; ++round) {
        Listener publisher(broker.port());
        publisher.subscribe("leaving");
        for (int i = 0; i < Count; ++i)
            publisher.client.publish(QLatin1String("leaving"), QByteArray::number(i), 1);
        {
            const Interruptions interruptions;
            publisher.client.disconnectFromHost();
        }
        QTRY_COMPARE_WITH_TIMEOUT(observer.received.size(), Count, PatienceMs);
        observer.received.clear();
    }
}

/** What the broker sends while we write must not end the connection. */
void TestLeaving::ownEchoDestroysNothing()
{
    MosquittoProcess broker;
    QVERIFY(broker.start());
    Listener observer(broker.port());
    observer.subscribe("echo");
    Listener publisher(broker.port());
    publisher.subscribe("echo");
    const QByteArray payload(8 << 20, 'x');
    for (int i = 0; i < 3; ++i)
        QCOMPARE(publisher.client.publish(QLatin1String("echo"), payload), 0);
    publisher.client.disconnectFromHost();
    const QByteArray id = publisher.client.clientId().toLatin1();
    QTRY_VERIFY_WITH_TIMEOUT(broker.log().contains(id + " disconnected."), PatienceMs);
    QTRY_COMPARE_WITH_TIMEOUT(observer.received.size(), 3, PatienceMs);
}

QTEST_GUILESS_MAIN(TestLeaving)
#include "tst_leaving.moc"
