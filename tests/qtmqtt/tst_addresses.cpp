// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "mosquittoprocess.h"
#include "qmqttconnection_p.h"
#include "stubbornlistener.h"
#include "testkit/waiting.h"

#include <QtCore/QElapsedTimer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QtTest>

namespace {
constexpr int KeepAliveMs = 5000; // the shortest there is

const QHostAddress First("127.0.0.2"); // where the broker is not
const QHostAddress Second(QHostAddress::LocalHost);

/** The first that a connection has to tell; Ended with NoError if it tells nothing. */
QMqttConnection::Event outcome(QMqttConnection *connection)
{
    if (!QTest::qWaitFor([&] { return connection->hasEvents(); }, PatienceMs))
        return QMqttConnection::Ended { QMqttClient::NoError };
    return connection->takeEvent();
}

bool isAccepted(const QMqttConnection::Event &event)
{
    return std::holds_alternative<QMqttConnection::Accepted>(event);
}

QMqttClient::ClientError errorOf(const QMqttConnection::Event &event)
{
    const auto *const ended = std::get_if<QMqttConnection::Ended>(&event);
    return ended ? ended->error : QMqttClient::UnknownError;
}
} // namespace

/** A name with several addresses.  They are given to the connection: names cannot be had here. */
class TestAddresses : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();

    void refusedOnesAreSkipped();
    void lateRefusalIsSkipped();
    void whoeverDoesNotAcceptIsSkipped_data();
    void whoeverDoesNotAcceptIsSkipped();
    void refusalInMqttIsAnAnswer();
    void lastErrorCounts();
    void halfAnAnswerIsForgotten();
    void silentOnesShareTheTime();
    void noneIsAFailure();

private:
    MosquittoProcess m_broker;
    QMqttSettings m_settings;
};

void TestAddresses::initTestCase()
{
    QVERIFY(m_broker.start());
}

void TestAddresses::init()
{
    m_settings.port = m_broker.port();
    m_settings.keepAlive = KeepAliveMs / 1000;
}

void TestAddresses::refusedOnesAreSkipped()
{
    QMqttConnection connection(m_settings);
    connection.open({ QHostAddress::LocalHostIPv6, First, Second });
    QVERIFY(isAccepted(outcome(&connection)));
    QVERIFY(!connection.hasEvents());
}

void TestAddresses::lateRefusalIsSkipped()
{
    StubbornListener listener(First, m_broker.port());
    QMqttConnection connection(m_settings);
    connection.open({ First, Second });
    listener.close();
    QVERIFY(isAccepted(outcome(&connection)));
    QVERIFY(!connection.hasEvents());
}

void TestAddresses::whoeverDoesNotAcceptIsSkipped_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<bool>("closes");
    QTest::newRow("closes") << QByteArray() << true;
    QTest::newRow("is no broker") << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n") << false;
    QTest::newRow("is no broker and closes") << QByteArray("SSH-2.0") << true;
    QTest::newRow("is silent") << QByteArray() << false;
    QTest::newRow("stops in the middle") << QByteArray::fromHex("2002") << false;
}

void TestAddresses::whoeverDoesNotAcceptIsSkipped()
{
    QFETCH(QByteArray, answer);
    QFETCH(bool, closes);
    QTcpServer other;
    QVERIFY(other.listen(First, m_broker.port()));
    int callers = 0;
    connect(&other, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *const socket = other.nextPendingConnection();
        ++callers;
        socket->write(answer);
        if (closes)
            socket->disconnectFromHost();
    });
    QMqttConnection connection(m_settings);
    connection.open({ First, Second });
    QVERIFY(isAccepted(outcome(&connection)));
    QVERIFY(!connection.hasEvents());
    QCOMPARE(callers, 1);
    // It is a connection like any other.
    QVERIFY(connection.publish("a", "x", 1, false) > 0);
    const QMqttConnection::Event event = outcome(&connection);
    QVERIFY(std::holds_alternative<QMqttConnection::PublishConfirmed>(event));
}

void TestAddresses::refusalInMqttIsAnAnswer()
{
    FakeBroker peer;
    peer.setAnswer(QByteArray::fromHex("20020005"));
    m_settings.port = peer.port();
    QMqttConnection connection(m_settings);
    connection.open({ Second, Second });
    QCOMPARE(errorOf(outcome(&connection)), QMqttClient::NotAuthorized);
    QTRY_VERIFY(peer.connections() == 1);
    QVERIFY(!connection.hasEvents());
}

void TestAddresses::lastErrorCounts()
{
    FakeBroker peer;
    peer.setAnswer("HTTP");
    m_settings.port = peer.port();
    QMqttConnection first(m_settings);
    first.open({ First, Second });
    QCOMPARE(errorOf(outcome(&first)), QMqttClient::ProtocolViolation);
    QMqttConnection second(m_settings);
    second.open({ Second, First });
    QCOMPARE(errorOf(outcome(&second)), QMqttClient::TransportInvalid);
}

void TestAddresses::halfAnAnswerIsForgotten()
{
    FakeBroker peer;
    peer.setAnswer("HTTP");
    QTcpServer other;
    QVERIFY(other.listen(First, peer.port()));
    connect(&other, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *const socket = other.nextPendingConnection();
        socket->write(FakeBroker::acceptance().left(2));
        socket->disconnectFromHost();
    });
    m_settings.port = peer.port();
    QMqttConnection connection(m_settings);
    connection.open({ First, Second });
    QCOMPARE(errorOf(outcome(&connection)), QMqttClient::ProtocolViolation);
}

void TestAddresses::silentOnesShareTheTime()
{
    FakeBroker peer;
    peer.setAnswer(QByteArray());
    m_settings.port = peer.port();
    QElapsedTimer time;
    time.start();
    QMqttConnection connection(m_settings);
    connection.open({ Second, Second, Second });
    QCOMPARE(errorOf(outcome(&connection)), QMqttClient::ServerUnavailable);
    QCOMPARE(peer.connections(), 3);
    QVERIFY2(time.elapsed() >= KeepAliveMs - 500 && time.elapsed() < 2 * KeepAliveMs,
        qPrintable(QString::number(time.elapsed())));
}

void TestAddresses::noneIsAFailure()
{
    QMqttConnection connection(m_settings);
    connection.open(QList<QHostAddress>());
    QCOMPARE(errorOf(outcome(&connection)), QMqttClient::TransportInvalid);
}

QTEST_GUILESS_MAIN(TestAddresses)
#include "tst_addresses.moc"
