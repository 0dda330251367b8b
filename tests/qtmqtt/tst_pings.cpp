// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "loggedclient.h"
#include "testkit/waiting.h"

#include <QtTest/QtTest>

namespace {
constexpr quint16 ShortestKeepAlive = 5; // seconds
} // namespace

/** Pings on request, and their answers. */
class TestPings : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void requestedPingIsSentAndAnswered();
    void requestNeedsAConnection();
    void requestWaitsForWhatIsBeingSent();
    void automaticPingIsAnsweredToo();
};

void TestPings::requestedPingIsSentAndAnswered()
{
    FakeBroker peer;
    LoggedClient client(peer.port());
    client.setAutoKeepAlive(false);
    QSignalSpy answers(&client, &QMqttClient::pingResponseReceived);
    QVERIFY(client.connects());
    for (int i = 1; i <= 3; ++i) {
        QVERIFY(client.requestPing());
        QTRY_COMPARE(answers.count(), i);
        QCOMPARE(peer.count(FakeBroker::PingRequest), i);
        QCOMPARE(peer.packets().constLast(), QByteArray::fromHex("c000"));
    }
}

void TestPings::requestNeedsAConnection()
{
    FakeBroker peer;
    LoggedClient client(peer.port());
    client.setAutoKeepAlive(false);
    QVERIFY(!client.requestPing());
    client.connectToHost();
    QVERIFY(!client.requestPing());
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    client.disconnectFromHost();
    QVERIFY(!client.requestPing());
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(peer.count(FakeBroker::PingRequest), 0);
}

void TestPings::requestWaitsForWhatIsBeingSent()
{
    const QByteArray payload(32 << 20, 'x'); // more than the sockets hold
    FakeBroker peer;
    LoggedClient client(peer.port());
    client.setAutoKeepAlive(false);
    QVERIFY(client.connects());
    client.publish(QLatin1String("t"), payload);
    QVERIFY(client.requestPing());
    QTRY_COMPARE_WITH_TIMEOUT(peer.count(FakeBroker::PingRequest), 1, PatienceMs);
    QCOMPARE(peer.packets().size(), 3);
    QVERIFY(peer.packets().at(1).endsWith(payload));
}

void TestPings::automaticPingIsAnsweredToo()
{
    FakeBroker peer;
    LoggedClient client(peer.port());
    client.setKeepAlive(ShortestKeepAlive);
    QSignalSpy answers(&client, &QMqttClient::pingResponseReceived);
    QVERIFY(client.connects());
    QVERIFY(!client.requestPing());
    QTRY_COMPARE_WITH_TIMEOUT(answers.count(), 1, PatienceMs);
    QCOMPARE(peer.count(FakeBroker::PingRequest), 1);
}

QTEST_GUILESS_MAIN(TestPings)
#include "tst_pings.moc"
