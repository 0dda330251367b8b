// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "qmqttconnection_p.h"
#include "testkit/waiting.h"
#include "wirepeer.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <algorithm>
#include <atomic>

/** How much is read before others have their turn, seen by the owner of a connection. */
class TestReading : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void turnsAreShort_data();
    void turnsAreShort();
    void aBacklogIsReadToItsEnd();
};

void TestReading::turnsAreShort_data()
{
    QTest::addColumn<int>("unconfirmed"); // messages of ours; the library would read as many
    QTest::addColumn<int>("qos");
    QTest::newRow("nothing unconfirmed") << 0 << 0;
    QTest::newRow("few unconfirmed") << 20 << 1;
    QTest::newRow("many unconfirmed") << 10000 << 1;
    QTest::newRow("many unconfirmed, qos 2") << 5000 << 2;
}

void TestReading::turnsAreShort()
{
    QFETCH(int, unconfirmed);
    QFETCH(int, qos);
    constexpr int Count = 20000;
    FakeBroker peer; // confirms nothing
    QMqttSettings settings;
    settings.port = peer.port();
    QMqttConnection connection(settings);
    connection.open({ QHostAddress::LocalHost });
    QTRY_VERIFY(connection.hasEvents());
    connection.takeEvent();
    for (int i = 0; i < unconfirmed; ++i)
        QVERIFY(connection.publish("t", "x", quint8(qos), false) > 0);
    QTRY_COMPARE_WITH_TIMEOUT(peer.count(FakeBroker::Publish), unconfirmed, PatienceMs);

    int read = 0;
    int longest = 0;
    connect(
        &connection, &QMqttConnection::eventsAvailable, this,
        [&] {
            const int before = read;
            for (; connection.hasEvents(); ++read)
                connection.takeEvent();
            longest = std::max(longest, read - before);
        },
        Qt::QueuedConnection);
    peer.send(FakeBroker::message("t", "x").repeated(Count));
    QTRY_COMPARE_WITH_TIMEOUT(read, Count, PatienceMs);
    QVERIFY2(longest <= QMqttConnection::PacketsPerTurn, qPrintable(QString::number(longest)));
}

/**
 * More than the kernel keeps, so that the broker waits for us: a segment may then end after the
 * first byte of a packet, and nothing follows it before that byte has been read.
 */
void TestReading::aBacklogIsReadToItsEnd()
{
    constexpr int Count = 300000;
    QByteArray backlog;
    for (int i = 0; i < Count; ++i)
        backlog += FakeBroker::message("t", QByteArray(i % 97, 'x'));
    std::atomic<bool> sent { false };
    WirePeer peer([&](WirePeer &broker) {
        broker.accept();
        sent = broker.send(backlog);
        broker.readPacket(); // until the client goes
    });
    QMqttSettings settings;
    settings.port = peer.port();
    QMqttConnection connection(settings);
    connection.open({ QHostAddress::LocalHost });
    int read = -1; // the acceptance comes first
    // As the program waits: QTest's own waits sleep between two looks, and all this while the
    // connection would stand still. It is much, with sanitizers, but it is to go on all the time.
    QEventLoop loop;
    QTimer standstill;
    connect(&standstill, &QTimer::timeout, &loop, &QEventLoop::quit);
    connect(
        &connection, &QMqttConnection::eventsAvailable, &loop,
        [&] {
            for (; connection.hasEvents(); ++read)
                connection.takeEvent();
            standstill.start(PatienceMs);
            if (read == Count)
                loop.quit();
        },
        Qt::QueuedConnection);
    standstill.start(PatienceMs);
    loop.exec();
    QCOMPARE(read, Count);
    QTRY_VERIFY(sent);
}

QTEST_GUILESS_MAIN(TestReading)
#include "tst_reading.moc"
