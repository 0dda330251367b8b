// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"
#include "fakebroker.h"
#include "loggedclient.h"
#include "mosquittoprocess.h"
#include "oursalone.h"
#include "resolver.h"
#include "signallog.h"
#include "stubbornlistener.h"
#include "testkit/waiting.h"

#include <QtCore/QDir>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QtTest>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace {

const QStringList Attempt { "stateChanged(Connecting)" };
const QStringList Success { "stateChanged(Connected)", "connected" };
const QStringList Farewell { "stateChanged(Disconnected)", "disconnected" };

QStringList failure(const QString &error)
{
    return Farewell + QStringList { "errorChanged(" + error + ")" };
}

const QStringList Loss = failure("TransportInvalid");

/** The descriptor of this process's connection to a port; -1 if there is none. */
int descriptorOfConnectionTo(quint16 port)
{
    for (const QString &name : QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System)) {
        sockaddr_in peer = {};
        socklen_t size = sizeof peer;
        if (getpeername(name.toInt(), reinterpret_cast<sockaddr *>(&peer), &size) == 0
            && peer.sin_family == AF_INET && ntohs(peer.sin_port) == port)
            return name.toInt();
    }
    return -1;
}

/** An option of a TCP socket; -1 if it cannot be read. */
int tcpOption(int descriptor, int option)
{
    int value = -1;
    socklen_t size = sizeof value;
    return getsockopt(descriptor, IPPROTO_TCP, option, &value, &size) == 0 ? value : -1;
}

int openDescriptors()
{
    return QDir("/proc/self/fd").entryList(QDir::AllEntries | QDir::System).size();
}
} // namespace

#define TRY_LOG(log, expected)                                                                     \
    QTRY_COMPARE_WITH_TIMEOUT((log).entries(), expected, PatienceMs);                              \
    (log).take()

/** Connecting, losing and leaving: which signals, in which order, and what goes over the wire. */
class TestConnection : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void freshClientHasDefaults();
    void eachClientHasItsOwnId();
    void connectRequestCarriesDefaults();
    void connectRequestCarriesSettings();
    void shortKeepAliveIsRaised();
    void emptyIdIsSentAsEmpty();
    void emptyIdWithRememberedSessionIsRejected();
    void setterTellsOnlyChanges();
    void unsupportedValuesAreIgnored();
    void settersAreIgnoredUnlessDisconnected();
    void enumeratorsPrintWithTheirClass();
    void stringBasedConnectionsWork();

    void successfulConnection();
    void nameIsLookedUpInTheBackground();
    void deletedDuringTheLookupIsSilent();
    void refusedConnection();
    void unknownHostName();
    void missingAddressFailsAtOnce();
    void missingAddressFailsAfterAConnection();
    void slowPeerIsWaitedFor();
    void lateRefusalIsALoss();
    void secondCallWhileConnectingDoesNothing();
    void peerThatClosesFails_data();
    void peerThatClosesFails();
    void refusalGivesItsError_data();
    void refusalGivesItsError();
    void foreignProtocolIsAViolation_data();
    void foreignProtocolIsAViolation();
    void answerInPiecesIsUnderstood();
    void acceptedAndClosedAtOnceIsLost();
    void smallPacketsWaitForNothing();

    void killedBroker();
    void stoppedBroker();
    void takenOverClientId();
    void resetConnection();
    void reconnectsAfterLoss();
    void attemptsLeaveNoDescriptorsOpen();

    void leavingIsSynchronousAndNoError();
    void leavingWhileConnectingIsAnError();
    void leavingWhileDisconnectedDoesNothing();
    void leavingSaysFarewellOnce();
    void deletedClientLeavesSilently();
    void deletedWhileConnectingIsSilent();
    void leavingAFrozenBrokerEnds();
    void unsentBacklogIsFlushedOnLeaving();

private:
    MosquittoProcess m_broker;
};

void TestConnection::initTestCase()
{
    QVERIFY(m_broker.start());
}

void TestConnection::freshClientHasDefaults()
{
    const QMqttClient client;
    QCOMPARE(client.hostname(), QString());
    QCOMPARE(client.port(), quint16(0));
    QVERIFY(QRegularExpression("^[0-9a-f]{23}$").match(client.clientId()).hasMatch());
    QCOMPARE(client.keepAlive(), quint16(60));
    QCOMPARE(client.cleanSession(), true);
    QCOMPARE(client.protocolVersion(), QMqttClient::MQTT_3_1_1);
    QCOMPARE(client.autoKeepAlive(), true);
    QCOMPARE(client.state(), QMqttClient::Disconnected);
    QCOMPARE(client.error(), QMqttClient::NoError);
    QCOMPARE(client.username(), QString());
    QCOMPARE(client.password(), QString());
    QCOMPARE(client.willTopic(), QString());
    QCOMPARE(client.willMessage(), QByteArray());
    QCOMPARE(client.willQoS(), quint8(0));
    QCOMPARE(client.willRetain(), false);
}

void TestConnection::eachClientHasItsOwnId()
{
    QVERIFY(QMqttClient().clientId() != QMqttClient().clientId());
}

void TestConnection::connectRequestCarriesDefaults()
{
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.connectToHost();
    QTRY_COMPARE(peer.packets().size(), 1);
    const QByteArray head = QByteArray::fromHex("1023"
                                                "00044d515454"
                                                "04"
                                                "02"
                                                "003c"
                                                "0017");
    QCOMPARE(peer.packets().constFirst(), head + client.clientId().toLatin1());
}

void TestConnection::connectRequestCarriesSettings()
{
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.setClientId("me");
    client.setCleanSession(false);
    client.setKeepAlive(7);
    client.setUsername("u");
    client.setPassword("p");
    client.setWillTopic("w");
    client.setWillMessage("gone");
    client.setWillQoS(1);
    client.setWillRetain(true);
    client.connectToHost();
    QTRY_COMPARE(peer.packets().size(), 1);
    QCOMPARE(peer.packets().constFirst().mid(2),
        QByteArray::fromHex("00044d515454"
                            "04"
                            "ec"
                            "0007")
            + QByteArray("\0\2me\0\1w", 7) + QByteArray("\0\4gone\0\1u\0\1p", 12));
}

void TestConnection::shortKeepAliveIsRaised()
{
    OURS_ALONE("the library takes no less than 5 seconds");
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    client.setKeepAlive(1);
    client.connectToHost();
    QTRY_COMPARE(peer.packets().size(), 1);
    QCOMPARE(peer.packets().constFirst().mid(10, 2), QByteArray::fromHex("0005"));
}

void TestConnection::emptyIdIsSentAsEmpty()
{
    LoggedClient client(m_broker.port());
    client.setClientId(QString());
    QVERIFY(client.connects());
    QCOMPARE(client.clientId(), QString());
}

void TestConnection::emptyIdWithRememberedSessionIsRejected()
{
    QMqttClient client;
    aim(&client, m_broker.port());
    client.setClientId(QString());
    client.setCleanSession(false);
    SignalLog log(&client);
    client.connectToHost();
    QCOMPARE(log.take(), Attempt);
    TRY_LOG(log, failure("IdRejected"));
}

void TestConnection::setterTellsOnlyChanges()
{
    QMqttClient client;
    QSignalSpy keepAlive(&client, &QMqttClient::keepAliveChanged);
    QSignalSpy autoKeepAlive(&client, &QMqttClient::autoKeepAliveChanged);
    QSignalSpy hostname(&client, &QMqttClient::hostnameChanged);
    client.setKeepAlive(60);
    client.setAutoKeepAlive(true);
    client.setHostname(QString());
    QCOMPARE(keepAlive.count() + autoKeepAlive.count() + hostname.count(), 0);
    client.setKeepAlive(30);
    client.setKeepAlive(30);
    client.setHostname("a");
    QCOMPARE(keepAlive.count(), 1);
    QCOMPARE(keepAlive.at(0).at(0).value<quint16>(), quint16(30));
    QCOMPARE(hostname.at(0).at(0).toString(), QString("a"));
}

void TestConnection::unsupportedValuesAreIgnored()
{
    OURS_ALONE("the module has MQTT 5");
    QMqttClient client;
    QSignalSpy version(&client, &QMqttClient::protocolVersionChanged);
    client.setProtocolVersion(QMqttClient::MQTT_5_0); // not supported
    QCOMPARE(client.protocolVersion(), QMqttClient::MQTT_3_1_1);
    client.setProtocolVersion(QMqttClient::MQTT_3_1);
    QCOMPARE(version.count(), 1);
    client.setWillQoS(3);
    QCOMPARE(client.willQoS(), quint8(0));
}

void TestConnection::settersAreIgnoredUnlessDisconnected()
{
    FakeBroker peer;
    peer.setAnswer(QByteArray()); // stays in Connecting
    QMqttClient client;
    aim(&client, peer.port());
    client.connectToHost();
    QSignalSpy port(&client, &QMqttClient::portChanged);
    client.setPort(1);
    client.setHostname("elsewhere");
    client.setClientId("other");
    client.setKeepAlive(7);
    QCOMPARE(port.count(), 0);
    QCOMPARE(client.port(), peer.port());
    QCOMPARE(client.hostname(), QStringLiteral("127.0.0.1"));
    QVERIFY(client.clientId() != "other");
    QCOMPARE(client.keepAlive(), quint16(60));
}

void TestConnection::enumeratorsPrintWithTheirClass()
{
    QString text;
    QDebug(&text) << "Mqtt::error()" << QMqttClient::TransportInvalid;
    QCOMPARE(text.trimmed(), QString("Mqtt::error() QMqttClient::TransportInvalid"));
    text.clear();
    QDebug(&text) << QMqttClient::ClientError(6);
    QCOMPARE(text.trimmed(), QString("QMqttClient::ClientError(6)"));
    QCOMPARE(QMetaEnum::fromType<QMqttClient::ClientError>().valueToKey(256), "TransportInvalid");
}

void TestConnection::stringBasedConnectionsWork()
{
    QMqttClient client;
    const QMetaObject *meta = client.metaObject();
    for (const char *signal : { "connected()", "disconnected()", "stateChanged(ClientState)",
             "errorChanged(ClientError)", "messageReceived(QByteArray,QMqttTopicName)",
             "messageReceived(QByteArray)", "messageSent(int)", "pingResponseReceived()",
             "brokerSessionRestored()", "portChanged(quint16)", "hostnameChanged(QString)" })
        QVERIFY2(meta->indexOfSignal(signal) >= 0, signal);
    QVERIFY(meta->indexOfMethod("connectToHost()") >= 0);
    QVERIFY(meta->indexOfMethod("disconnectFromHost()") >= 0);
    QVERIFY(meta->indexOfMethod("publish(QMqttTopicName,QByteArray,quint8,bool)") >= 0);

    // Across an event loop the arguments are copied, which needs their types to be known.  Of the
    // module only the names are promised.
    if (IsModule)
        qRegisterMetaType<QMqttClient::ClientError>("ClientError");
    QSignalSpy errors(&client, SIGNAL(errorChanged(ClientError)));
    int queued = 0;
    connect(
        &client, &QMqttClient::errorChanged, this, [&] { ++queued; }, Qt::QueuedConnection);
    client.connectToHost();
    QCOMPARE(errors.count(), 1);
    QCOMPARE(errors.at(0).at(0).value<QMqttClient::ClientError>(), QMqttClient::TransportInvalid);
    QTRY_COMPARE(queued, 1);
}

void TestConnection::successfulConnection()
{
    LoggedClient client(m_broker.port());
    client.connectToHost();
    QCOMPARE(client.log.take(), Attempt);
    QCOMPARE(client.state(), QMqttClient::Connecting);
    TRY_LOG(client.log, Success);
    QCOMPARE(client.state(), QMqttClient::Connected);
    client.connectToHost();
    QCOMPARE(client.log.take(), QStringList());
    QTRY_VERIFY(m_broker.log().contains(client.clientId().toLatin1() + " (p2, c1, k60)."));
}

void TestConnection::nameIsLookedUpInTheBackground()
{
    Resolver resolver("known.test", "127.0.0.1");
    QMqttClient client;
    aim(&client, m_broker.port());
    client.setHostname("known.test");
    SignalLog log(&client);
    client.connectToHost();
    QCOMPARE(log.take(), Attempt);
    QTRY_VERIFY(resolver.isAsked());
    QCOMPARE(log.take(), QStringList());
    resolver.release();
    TRY_LOG(log, Success);
}

void TestConnection::deletedDuringTheLookupIsSilent()
{
    Resolver resolver("slow.test", "127.0.0.1");
    FakeBroker peer;
    auto client = std::make_unique<QMqttClient>();
    aim(client.get(), peer.port());
    client->setHostname("slow.test");
    client->connectToHost();
    QTRY_VERIFY(resolver.isAsked());
    SignalLog log(client.get());
    client.reset();
    resolver.release();
    // Lookups of one name share their outcome, so when a later one knows it, the earlier one does.
    QMqttClient other;
    aim(&other, peer.port());
    other.setHostname("slow.test");
    other.connectToHost();
    QTRY_COMPARE(other.state(), QMqttClient::Connected);
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(peer.connections(), 1);
}

void TestConnection::refusedConnection()
{
    LoggedClient client(deafPort());
    for (int i = 0; i < 2; ++i) {
        client.connectToHost();
        QCOMPARE(client.log.take(), Attempt);
        QCOMPARE(client.error(), QMqttClient::NoError);
        TRY_LOG(client.log, Loss);
        QCOMPARE(client.error(), QMqttClient::TransportInvalid);
    }
}

void TestConnection::unknownHostName()
{
    Resolver resolver("nobody.test");
    resolver.release();
    QMqttClient client;
    aim(&client, m_broker.port());
    client.setHostname("nobody.test");
    SignalLog log(&client);
    client.connectToHost();
    QCOMPARE(log.take(), Attempt);
    TRY_LOG(log, Loss);
}

void TestConnection::missingAddressFailsAtOnce()
{
    QMqttClient client;
    SignalLog log(&client);
    const QStringList expected { "errorChanged(TransportInvalid)" };
    client.connectToHost();
    QCOMPARE(log.take(), expected);
    aim(&client, 0);
    client.connectToHost(); // tells again
    QCOMPARE(log.take(), expected);
    QCOMPARE(client.state(), QMqttClient::Disconnected);
}

void TestConnection::missingAddressFailsAfterAConnection()
{
    OURS_ALONE("the module crashes");
    LoggedClient client(m_broker.port());
    QVERIFY(client.connects());
    client.disconnectFromHost();
    client.setHostname(QString());
    SignalLog log(&client);
    client.connectToHost();
    QCOMPARE(log.take(), QStringList { "errorChanged(TransportInvalid)" });
    QCOMPARE(client.state(), QMqttClient::Disconnected);
}

void TestConnection::slowPeerIsWaitedFor()
{
    StubbornListener listener;
    LoggedClient client(listener.port());
    client.connectToHost();
    QCOMPARE(client.log.take(), Attempt);
    listener.yield();
    QTRY_VERIFY_WITH_TIMEOUT(listener.hasCaller(), PatienceMs);
    QCOMPARE(client.log.take(), QStringList());
    QTcpSocket peer;
    QVERIFY(peer.setSocketDescriptor(listener.accept()));
    // The request could not be sent when it was made.
    QTRY_COMPARE(peer.bytesAvailable(), 2 + 0x23);
    peer.write(FakeBroker::acceptance());
    TRY_LOG(client.log, Success);
}

void TestConnection::lateRefusalIsALoss()
{
    StubbornListener listener;
    LoggedClient client(listener.port());
    client.connectToHost();
    QCOMPARE(client.log.take(), Attempt);
    listener.close();
    TRY_LOG(client.log, Loss);
}

void TestConnection::secondCallWhileConnectingDoesNothing()
{
    FakeBroker peer;
    LoggedClient client(peer.port());
    client.connectToHost();
    QVERIFY(client.connects());
    QCOMPARE(peer.connections(), 1);
}

void TestConnection::peerThatClosesFails_data()
{
    QTest::addColumn<bool>("reset");
    QTest::newRow("orderly") << false;
    QTest::newRow("reset") << true;
}

void TestConnection::peerThatClosesFails()
{
    QFETCH(bool, reset);
    FakeBroker peer;
    peer.setAnswer(QByteArray());
    LoggedClient client(peer.port());
    client.connectToHost();
    QTRY_COMPARE(peer.packets().size(), 1);
    QCOMPARE(client.log.take(), Attempt);
    if (reset)
        peer.resetConnection();
    else
        peer.closeConnection();
    TRY_LOG(client.log, Loss);
}

void TestConnection::refusalGivesItsError_data()
{
    QTest::addColumn<QString>("error");
    QTest::addColumn<int>("code");
    QTest::newRow("1") << "InvalidProtocolVersion" << 1;
    QTest::newRow("2") << "IdRejected" << 2;
    QTest::newRow("3") << "ServerUnavailable" << 3;
    QTest::newRow("4") << "BadUsernameOrPassword" << 4;
    QTest::newRow("5") << "NotAuthorized" << 5;
    QTest::newRow("6") << "6" << 6;
    QTest::newRow("255") << "255" << 255;
}

void TestConnection::refusalGivesItsError()
{
    QFETCH(QString, error);
    QFETCH(int, code);
    FakeBroker peer;
    peer.setAnswer(QByteArray::fromHex("200200") + char(code));
    peer.setClosing(true);
    LoggedClient client(peer.port());
    client.connectToHost();
    TRY_LOG(client.log, Attempt + failure(error));
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(client.log.take(), QStringList()); // the closing is not told as another error
}

void TestConnection::foreignProtocolIsAViolation_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("web server") << QByteArray("HTTP/1.1 400 Bad Request\r\n\r\n");
    if (IsModule)
        return; // only ours knows by the first byte
    QTest::newRow("one byte") << QByteArray("S");
    QTest::newRow("zeros") << QByteArray(8, '\0');
    QTest::newRow("another packet") << QByteArray::fromHex("d000");
    QTest::newRow("length never ends") << QByteArray::fromHex("20ffffffffff");
}

void TestConnection::foreignProtocolIsAViolation()
{
    QFETCH(QByteArray, bytes);
    FakeBroker peer;
    peer.setAnswer(bytes);
    LoggedClient client(peer.port());
    client.connectToHost();
    TRY_LOG(client.log, Attempt + failure("ProtocolViolation"));
    QTRY_VERIFY(peer.isDeserted());
}

void TestConnection::answerInPiecesIsUnderstood()
{
    FakeBroker peer;
    peer.setAnswer(QByteArray());
    LoggedClient client(peer.port());
    client.connectToHost();
    QTRY_COMPARE(peer.packets().size(), 1);
    peer.sendByteWise(FakeBroker::acceptance());
    TRY_LOG(client.log, Attempt + Success);
}

void TestConnection::acceptedAndClosedAtOnceIsLost()
{
    FakeBroker peer;
    peer.setAnswer(FakeBroker::acceptance() + FakeBroker::message("t", "last words"));
    peer.setClosing(true);
    LoggedClient client(peer.port());
    client.connectToHost();
    TRY_LOG(client.log, Attempt + Success + QStringList { "message last words" } + Loss);
}

/** Neither for the acknowledgement of the packet before, nor the broker for ours. */
void TestConnection::smallPacketsWaitForNothing()
{
    OURS_ALONE("the module leaves the delays of TCP as they are");
    FakeBroker peer;
    QMqttClient client;
    aim(&client, peer.port());
    QSignalSpy received(&client, &QMqttClient::messageReceived);
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    const int socket = descriptorOfConnectionTo(peer.port());
    QVERIFY(socket >= 0);
    QCOMPARE(tcpOption(socket, TCP_NODELAY), 1);
    // Answering at once makes the kernel delay acknowledgements, unless it is told again each time.
    for (int round = 1; round <= 10; ++round) {
        peer.send(FakeBroker::message("t", "question"));
        QTRY_COMPARE(received.count(), round);
        QCOMPARE(tcpOption(socket, TCP_QUICKACK), 1);
        client.publish(QLatin1String("t"), "answer");
        QTRY_COMPARE(peer.count(FakeBroker::Publish), round);
    }
}

void TestConnection::killedBroker()
{
    MosquittoProcess broker;
    QVERIFY(broker.start());
    LoggedClient client(broker.port());
    QVERIFY(client.connects());
    broker.kill();
    QCOMPARE(client.log.take(), QStringList());
    TRY_LOG(client.log, Loss);
    QCOMPARE(client.error(), QMqttClient::TransportInvalid);
}

void TestConnection::stoppedBroker()
{
    MosquittoProcess broker;
    QVERIFY(broker.start());
    LoggedClient client(broker.port());
    QVERIFY(client.connects());
    broker.stop();
    TRY_LOG(client.log, Loss);
}

void TestConnection::takenOverClientId()
{
    QMqttClient first, second;
    aim(&first, m_broker.port());
    aim(&second, m_broker.port());
    second.setClientId(first.clientId());
    SignalLog log(&first);
    first.connectToHost();
    TRY_LOG(log, Attempt + Success);
    second.connectToHost();
    TRY_LOG(log, Loss);
    QTRY_COMPARE(second.state(), QMqttClient::Connected);
}

void TestConnection::resetConnection()
{
    FakeBroker peer;
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    peer.resetConnection();
    TRY_LOG(client.log, Loss);
}

void TestConnection::reconnectsAfterLoss()
{
    FakeBroker peer;
    QMqttClient client;
    const QString id = client.clientId();
    aim(&client, peer.port());
    SignalLog log(&client);
    for (int i = 0; i < 3; ++i) {
        client.connectToHost();
        QCOMPARE(client.error(), QMqttClient::NoError);
        TRY_LOG(log, Attempt + Success);
        peer.closeConnection();
        TRY_LOG(log, Loss);
    }
    QCOMPARE(client.clientId(), id);
    QCOMPARE(peer.packets().at(0), peer.packets().at(2));
}

void TestConnection::attemptsLeaveNoDescriptorsOpen()
{
    QMqttClient client;
    const int before = openDescriptors();
    for (int i = 0; i < 10; ++i) {
        aim(&client, deafPort());
        client.connectToHost();
        QTRY_COMPARE(client.error(), QMqttClient::TransportInvalid);
        aim(&client, m_broker.port());
        client.connectToHost();
        QTRY_COMPARE(client.state(), QMqttClient::Connected);
        client.disconnectFromHost();
    }
    QCOMPARE(openDescriptors(), before);
}

void TestConnection::leavingIsSynchronousAndNoError()
{
    LoggedClient client(m_broker.port());
    for (int i = 0; i < 2; ++i) {
        client.connectToHost();
        TRY_LOG(client.log, Attempt + Success);
        client.disconnectFromHost();
        QCOMPARE(client.log.take(), Farewell);
        QCOMPARE(client.error(), QMqttClient::NoError);
    }
    QTRY_COMPARE(m_broker.log().count(client.clientId().toLatin1() + " disconnected."), 2);
}

void TestConnection::leavingWhileConnectingIsAnError()
{
    FakeBroker peer;
    peer.setAnswer(QByteArray());
    LoggedClient client(peer.port());
    client.connectToHost();
    client.log.take();
    client.disconnectFromHost();
    QCOMPARE(client.log.take(), Loss);

    client.setHostname("localhost"); // given up during the lookup
    client.connectToHost();
    client.disconnectFromHost();
    QCOMPARE(client.log.take(), Attempt + Loss);
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(peer.connections(), 1);
    QCOMPARE(client.log.take(), QStringList());
}

void TestConnection::leavingWhileDisconnectedDoesNothing()
{
    QMqttClient client;
    SignalLog log(&client);
    client.disconnectFromHost();
    QCOMPARE(log.take(), QStringList());
}

void TestConnection::leavingSaysFarewellOnce()
{
    FakeBroker peer;
    {
        QMqttClient client;
        aim(&client, peer.port());
        client.connectToHost();
        QTRY_COMPARE(client.state(), QMqttClient::Connected);
        client.disconnectFromHost();
    }
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(peer.packets().size(), 2);
    QCOMPARE(peer.packets().constLast(), QByteArray::fromHex("e000"));
}

void TestConnection::deletedClientLeavesSilently()
{
    FakeBroker peer;
    auto client = std::make_unique<QMqttClient>();
    aim(client.get(), peer.port());
    client->connectToHost();
    QTRY_COMPARE(client->state(), QMqttClient::Connected);
    SignalLog log(client.get());
    QSignalSpy destroyed(client.get(), &QObject::destroyed);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(client->publish(QLatin1String("t"), "x"), 0);
    client.reset();
    QCOMPARE(log.take(), QStringList());
    QCOMPARE(destroyed.count(), 1);
    QTRY_COMPARE(peer.count(FakeBroker::Disconnect), 1);
    QCOMPARE(peer.count(FakeBroker::Publish), 5);
}

void TestConnection::deletedWhileConnectingIsSilent()
{
    FakeBroker peer;
    peer.setAnswer(QByteArray());
    auto client = std::make_unique<QMqttClient>();
    aim(client.get(), peer.port());
    client->connectToHost();
    QTRY_COMPARE(peer.packets().size(), 1);
    SignalLog log(client.get());
    client.reset();
    QCOMPARE(log.take(), QStringList());
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(peer.packets().size(), 1);
}

void TestConnection::leavingAFrozenBrokerEnds()
{
    FakeBroker peer; // in this thread, so it does nothing while we leave
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    // More than the sockets hold, so that neither this nor the farewell gets through.
    client.publish(QLatin1String("t"), QByteArray(64 << 20, 'x'), 1);
    SignalLog log(&client);
    client.disconnectFromHost();
    QCOMPARE(log.take(), Farewell);
}

void TestConnection::unsentBacklogIsFlushedOnLeaving()
{
    QMqttClient observer, client;
    aim(&observer, m_broker.port());
    aim(&client, m_broker.port());
    observer.connectToHost();
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    QTRY_COMPARE(observer.state(), QMqttClient::Connected);
    qint64 received = 0;
    connect(&observer, &QMqttClient::messageReceived, this,
        [&](const QByteArray &payload) { received += payload.size(); });
    const QMqttSubscription *subscription = observer.subscribe(QLatin1String("backlog"));
    QTRY_COMPARE(subscription->state(), QMqttSubscription::Subscribed);

    const QByteArray payload(8 << 20, 'x'); // more than a socket holds
    for (int i = 0; i < 3; ++i)
        QCOMPARE(client.publish(QLatin1String("backlog"), payload), 0);
    client.disconnectFromHost();
    QTRY_COMPARE_WITH_TIMEOUT(received, qint64(3 * payload.size()), PatienceMs);
    QTRY_VERIFY(m_broker.log().contains(client.clientId().toLatin1() + " disconnected."));
}

QTEST_GUILESS_MAIN(TestConnection)
#include "tst_connection.moc"
