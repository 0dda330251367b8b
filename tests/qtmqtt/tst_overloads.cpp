// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "listener.h"
#include "oursalone.h"
#include "signallog.h"

#include <QtMqtt/QtMqtt>
#include <QtNetwork/QSslConfiguration>
#include <QtTest/QtTest>

#include <type_traits>

#ifndef TOUCHUI_QTMQTT_MODULE
// An application may declare these itself.
Q_DECLARE_METATYPE(QMqttClient::ProtocolVersion)
Q_DECLARE_METATYPE(QMqttSubscription::SubscriptionState)
#endif

// Whether &Class::name names one function.  Code that takes the address of an overloaded one would
// compile with one implementation of the classes and not with the other.
#define ONE_FUNCTION(name)                                                                         \
    template <typename Class, typename = void> struct name##_isOne : std::false_type {             \
    };                                                                                             \
    template <typename Class>                                                                      \
    struct name##_isOne<Class, std::void_t<decltype(&Class::name)>> : std::true_type {             \
    };

namespace {
ONE_FUNCTION(connectToHost)
ONE_FUNCTION(connectToHostEncrypted)
ONE_FUNCTION(disconnectFromHost)
ONE_FUNCTION(messageReceived)
ONE_FUNCTION(publish)
ONE_FUNCTION(requestPing)
ONE_FUNCTION(subscribe)
ONE_FUNCTION(unsubscribe)

static_assert(!connectToHost_isOne<QMqttClient>::value, "");
static_assert(!connectToHostEncrypted_isOne<QMqttClient>::value, "");
static_assert(!publish_isOne<QMqttClient>::value, "");
static_assert(!subscribe_isOne<QMqttClient>::value, "");
static_assert(!unsubscribe_isOne<QMqttClient>::value, "");

static_assert(disconnectFromHost_isOne<QMqttClient>::value, "");
static_assert(messageReceived_isOne<QMqttClient>::value, "");
static_assert(requestPing_isOne<QMqttClient>::value, "");
static_assert(messageReceived_isOne<QMqttSubscription>::value, "");
static_assert(unsubscribe_isOne<QMqttSubscription>::value, "");
} // namespace

/** The second forms of overloaded functions; which names are overloaded is checked above. */
class TestOverloads : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void propertiesChangeNothing();
    void encryptionIsNotPretended();
};

void TestOverloads::propertiesChangeNothing()
{
    FakeBroker peer;
    Listener listener(peer.port());
    QMqttClient *const client = &listener.client;
    QMqttSubscription *const subscription
        = client->subscribe(QLatin1String("a"), QMqttSubscriptionProperties(), 1);
    QVERIFY(subscription);
    QCOMPARE(client->subscribe(QLatin1String("a"), 1), subscription);
    QCOMPARE(client->publish(QLatin1String("t"), QMqttPublishProperties(), "x"), 0);
    QCOMPARE(client->publish(QLatin1String("t"), "x"), 0);
    client->unsubscribe(QLatin1String("a"), QMqttUnsubscriptionProperties());
    QCOMPARE(subscription->state(), QMqttSubscription::UnsubscriptionPending);
    QTRY_COMPARE(peer.packets().size(), 5);
    const QList<QByteArray> packets = peer.packets();
    QCOMPARE(packets.at(1).mid(4), QByteArray("\0\1a\1", 4)); // after the head and the id
    QCOMPARE(packets.at(2), FakeBroker::message("t", "x"));
    QCOMPARE(packets.at(2), packets.at(3));
    QCOMPARE(packets.at(4).mid(4), QByteArray("\0\1a", 3));
}

void TestOverloads::encryptionIsNotPretended()
{
    OURS_ALONE("the module can encrypt");
    FakeBroker peer;
    QMqttClient client;
    client.setHostname(QStringLiteral("127.0.0.1"));
    client.setPort(peer.port());
    SignalLog log(&client);
    const QStringList failure { "errorChanged(TransportInvalid)" };
    QTest::ignoreMessage(QtWarningMsg, "Encrypted connections are not supported.");
    client.connectToHostEncrypted();
    QCOMPARE(log.take(), failure);
    QTest::ignoreMessage(QtWarningMsg, "Encrypted connections are not supported.");
    client.connectToHostEncrypted(QSslConfiguration());
    QCOMPARE(log.take(), failure);

    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    client.connectToHostEncrypted(); // neither while there is a connection
    QCOMPARE(client.state(), QMqttClient::Connected);
    QCOMPARE(peer.connections(), 1);
}

QTEST_GUILESS_MAIN(TestOverloads)
#include "tst_overloads.moc"
