// SPDX-License-Identifier: GPL-3.0-or-later
#include "fakebroker.h"
#include "listener.h"
#include "mosquittoprocess.h"
#include "oursalone.h"
#include "signallog.h"
#include "testkit/waiting.h"

#include <QtTest/QtTest>

#include <algorithm>
#include <ctime>
#include <memory>

/** Publishing, subscribing and receiving. */
class TestMessages : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();

    void publishReturnValue_data();
    void publishReturnValue();
    void publishNeedsAConnection();
    void confirmedMessageIsReportedOnce();
    void confirmationTellsTheStatus_data();
    void confirmationTellsTheStatus();
    void manyUnconfirmedMessagesAreAllSent();
    void unconfirmedMessageIsNotSentAgain();
    void publishingOnADeadLinkIsHarmless();
    void offendingMessageEndsTheConnection();
    void emptyRetainedMessageDeletes();

    void messageArrivesUnchanged_data();
    void messageArrivesUnchanged();
    void emptyPayloadIsNotNull();
    void messageInPiecesIsAssembled();
    void largePayloadsGoBothWays();
    void tooLargeAMessageIsDropped_data();
    void tooLargeAMessageIsDropped();
    void anUnfinishedHeadIsWaitedFor();
    void tooLargeAPacketOfAnotherKindEndsTheConnection();
    void messageTellsItsProperties();
    void repeatedDeliveryIsMarked_data();
    void repeatedDeliveryIsMarked();
    void backlogArrivesCompleteAndInOrder();
    void nothingIsLostOnLeaving_data();
    void nothingIsLostOnLeaving();
    void willIsPublishedWhenTheClientVanishes();
    void rememberedSessionIsRestored();

    void subscribeNeedsAConnection();
    void subscribeRefusesNonsense();
    void subscriptionIsConfirmed();
    void grantedQosIsTold();
    void repeatedFilterGivesTheSameObject();
    void overlappingFiltersGiveOneMessage();
    void onlyMatchingSubscriptionsEmit();
    void refusedSubscriptionIsAnError();
    void unsubscribing_data();
    void unsubscribing();
    void unsubscribingAnUnknownFilterDoesNothing();
    void subscriptionEndsWithItsConnection();
    void subscriptionIsDeletedWithTheClient();
    void deletedSubscriptionIsForgotten();

private:
    MosquittoProcess m_broker;
};

void TestMessages::initTestCase()
{
    QVERIFY(m_broker.start());
}

void TestMessages::publishReturnValue_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<int>("qos");
    QTest::addColumn<int>("sign"); // of the result
    QTest::newRow("qos 0") << "a" << 0 << 0;
    QTest::newRow("qos 1") << "a" << 1 << 1;
    QTest::newRow("qos 2") << "a" << 2 << 1;
    QTest::newRow("qos 3") << "a" << 3 << -1;
    QTest::newRow("no topic") << "" << 0 << -1;
    QTest::newRow("wildcard") << "a/#" << 1 << -1;
    QTest::newRow("plus") << "a/+" << 0 << -1;
    QTest::newRow("too long") << QString(65536, 'x') << 0 << -1;
    if (!IsModule) // which counts characters
        QTest::newRow("too many bytes") << QString(65535, QChar(0xfc)) << 0 << -1;
}

void TestMessages::publishReturnValue()
{
    QFETCH(QString, topic);
    QFETCH(int, qos);
    QFETCH(int, sign);
    Listener listener(m_broker.port());
    QSignalSpy sent(&listener.client, &QMqttClient::messageSent);
    const int id = listener.client.publish(topic, "x", quint8(qos));
    QCOMPARE(id > 0 ? 1 : id, sign);
    if (id > 0)
        QTRY_COMPARE(sent, QList<QVariantList> { { id } });
    QCOMPARE(listener.client.state(), QMqttClient::Connected);
}

void TestMessages::publishNeedsAConnection()
{
    FakeBroker peer;
    QMqttClient client;
    QCOMPARE(client.publish(QLatin1String("a"), "x", 0), -1);
    client.setHostname("127.0.0.1");
    client.setPort(peer.port());
    client.connectToHost();
    QCOMPARE(client.publish(QLatin1String("a"), "x", 1), -1);
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    client.disconnectFromHost();
    QCOMPARE(client.publish(QLatin1String("a"), "x", 2), -1);
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(peer.count(FakeBroker::Publish), 0);
}

void TestMessages::confirmedMessageIsReportedOnce()
{
    Listener listener(m_broker.port());
    listener.subscribe("confirmed");
    QSignalSpy sent(&listener.client, &QMqttClient::messageSent);
    QSet<int> ids;
    for (const quint8 qos : { 0, 1, 2, 0, 1, 2 })
        ids.insert(listener.client.publish(QLatin1String("confirmed"), "x", qos));
    ids.remove(0);
    QCOMPARE(ids.size(), 4);
    QTRY_COMPARE(sent.count(), 4);
    for (const QVariantList &arguments : sent)
        QVERIFY(ids.remove(arguments.at(0).toInt()));
    QTRY_COMPARE(listener.received.size(), 6);
}

void TestMessages::confirmationTellsTheStatus_data()
{
    QTest::addColumn<int>("qos");
    QTest::addColumn<QMqtt::MessageStatus>("status");
    QTest::newRow("qos 1") << 1 << QMqtt::MessageStatus::Acknowledged;
    QTest::newRow("qos 2") << 2 << QMqtt::MessageStatus::Completed;
}

void TestMessages::confirmationTellsTheStatus()
{
    QFETCH(int, qos);
    QFETCH(QMqtt::MessageStatus, status);
    Listener listener(m_broker.port());
    QSignalSpy changes(&listener.client, &QMqttClient::messageStatusChanged);
    QSignalSpy sent(&listener.client, &QMqttClient::messageSent);
    listener.client.publish(QLatin1String("a"), "x", 0); // is not confirmed
    const qint32 id = listener.client.publish(QLatin1String("a"), "x", quint8(qos));
    QTRY_COMPARE(sent.count(), 1);
    QVERIFY(!changes.isEmpty());
    QCOMPARE(changes.constLast().at(0).toInt(), id);
    QCOMPARE(changes.constLast().at(1).value<QMqtt::MessageStatus>(), status);
}

void TestMessages::manyUnconfirmedMessagesAreAllSent()
{
    FakeBroker peer; // confirms nothing
    Listener listener(peer.port());
    for (int i = 0; i < 100; ++i)
        QVERIFY(listener.client.publish(QLatin1String("a"), "x", 1) > 0);
    QTRY_COMPARE(peer.count(FakeBroker::Publish), 100);
}

void TestMessages::unconfirmedMessageIsNotSentAgain()
{
    FakeBroker peer;
    Listener listener(peer.port());
    QSignalSpy sent(&listener.client, &QMqttClient::messageSent);
    QVERIFY(listener.client.publish(QLatin1String("a"), "x", 1) > 0);
    QTRY_COMPARE(peer.count(FakeBroker::Publish), 1);
    peer.closeConnection();
    QTRY_COMPARE(listener.client.state(), QMqttClient::Disconnected);

    listener.client.connectToHost();
    QTRY_COMPARE(listener.client.state(), QMqttClient::Connected);
    listener.client.subscribe(QLatin1String("later"));
    QTRY_COMPARE(peer.count(FakeBroker::Subscribe), 1);
    QCOMPARE(peer.count(FakeBroker::Publish), 1);
    QCOMPARE(sent.count(), 0);
}

void TestMessages::publishingOnADeadLinkIsHarmless()
{
    MosquittoProcess broker;
    QVERIFY(broker.start());
    Listener listener(broker.port());
    SignalLog log(&listener.client);
    broker.kill();
    for (int i = 0; i < 100; ++i)
        listener.client.publish(QLatin1String("a"), QByteArray(1000, 'x'), 1);
    QVERIFY(!listener.client.subscribe(QLatin1String("a"))
        || listener.client.state() == QMqttClient::Connected);
    QCOMPARE(log.take(), QStringList()); // nothing from inside the calls
    const QStringList loss { "stateChanged(Disconnected)", "disconnected",
        "errorChanged(TransportInvalid)" };
    QTRY_COMPARE(log.entries(), loss);
}

void TestMessages::offendingMessageEndsTheConnection()
{
    MosquittoProcess broker;
    QVERIFY(broker.start("max_packet_size 1000\n"));
    Listener listener(broker.port());
    SignalLog log(&listener.client);
    listener.client.publish(QLatin1String("a"), QByteArray(2000, 'x'));
    const QStringList loss { "stateChanged(Disconnected)", "disconnected",
        "errorChanged(TransportInvalid)" };
    QTRY_COMPARE(log.entries(), loss);
}

void TestMessages::emptyRetainedMessageDeletes()
{
    Listener publisher(m_broker.port());
    publisher.subscribe("kept/#");
    publisher.client.publish(QLatin1String("kept/a"), "a", 0, true);
    publisher.client.publish(QLatin1String("kept/b"), "b", 0, true);
    publisher.client.publish(QLatin1String("kept/a"), QByteArray(), 0, true);
    QTRY_COMPARE(publisher.received.size(), 3);

    Listener late(m_broker.port());
    late.subscribe("kept/#");
    QTRY_COMPARE(late.payloads(), QList<QByteArray> { "b" });
    late.subscribe("kept/b"); // another filter brings the kept message again
    QTRY_COMPARE(late.payloads(), (QList<QByteArray> { "b", "b" }));
}

void TestMessages::messageArrivesUnchanged_data()
{
    QTest::addColumn<QString>("topic");
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("text") << "p/x" << QByteArray("text");
    QTest::newRow("empty level") << "p//x" << QByteArray("x");
    QTest::newRow("trailing slash") << "p/" << QByteArray("x");
    QTest::newRow("leading slash") << "/p/x" << QByteArray("x");
    QTest::newRow("accents") << u8"p/k\u00fcche/\u65e5" << QByteArray("\xc3\xbc");
    QTest::newRow("blanks") << "p/a b/ c" << QByteArray(" ");
    QTest::newRow("zeros") << "p/x" << QByteArray("a\0b\0", 4);
    QTest::newRow("not UTF-8") << "p/x" << QByteArray("\xff\xfe\x80");
    QTest::newRow("128 bytes") << "p/x" << QByteArray(128, 'x');
}

void TestMessages::messageArrivesUnchanged()
{
    QFETCH(QString, topic);
    QFETCH(QByteArray, payload);
    Listener listener(m_broker.port());
    listener.subscribe("p/#");
    listener.subscribe("/p/#");
    listener.client.publish(topic, payload);
    QTRY_COMPARE(listener.received.size(), 1);
    QCOMPARE(listener.received.at(0).topic, topic);
    QCOMPARE(listener.received.at(0).payload, payload);
}

void TestMessages::emptyPayloadIsNotNull()
{
    Listener listener(m_broker.port());
    listener.subscribe("empty");
    listener.client.publish(QLatin1String("empty"));
    QTRY_COMPARE(listener.received.size(), 1);
    QVERIFY(listener.received.at(0).payload.isEmpty());
    QVERIFY(!listener.received.at(0).payload.isNull());
}

void TestMessages::messageInPiecesIsAssembled()
{
    FakeBroker peer;
    Listener listener(peer.port());
    peer.sendByteWise(FakeBroker::message("t/1", "one") + FakeBroker::message("t/2", "two"));
    QTRY_COMPARE(listener.payloads(), (QList<QByteArray> { "one", "two" }));
    QCOMPARE(listener.received.at(1).topic, QString("t/2"));
}

void TestMessages::largePayloadsGoBothWays()
{
    Listener listener(m_broker.port());
    listener.subscribe("large", 1);
    const QByteArray payload(1 << 20, 'x');
    for (const quint8 qos : { 0, 1 }) {
        QVERIFY(listener.client.publish(QLatin1String("large"), payload, qos) >= 0);
        QTRY_COMPARE_WITH_TIMEOUT(listener.received.size(), 1, PatienceMs);
        QCOMPARE(listener.received.takeFirst().payload, payload);
    }
}

void TestMessages::tooLargeAMessageIsDropped_data()
{
    QTest::addColumn<int>("size");  // of the packet
    QTest::addColumn<int>("first"); // how much of it comes by itself
    QTest::addColumn<bool>("arrives");
    QTest::newRow("as large as can be") << (16 << 20) << 100 << true;
    QTest::newRow("too large") << (16 << 20) + 1 << 100 << false;
    for (int first = 1; first <= 5; ++first)
        QTest::addRow("too large, cut at %d", first) << (16 << 20) + 1 << first << false;
}

void TestMessages::tooLargeAMessageIsDropped()
{
    OURS_ALONE("a limit to what a message may take");
    QFETCH(int, size);
    QFETCH(int, first);
    QFETCH(bool, arrives);
    const int head = FakeBroker::messageHead("t", size).size();
    const QByteArray large = FakeBroker::message("t", QByteArray(size - head, 'x'));
    QCOMPARE(large.size(), size);
    if (!arrives)
        QTest::ignoreMessage(QtWarningMsg,
            qPrintable(
                QString("Dropping a message of %1 bytes, more than any may have.").arg(size)));
    FakeBroker peer;
    Listener listener(peer.port());
    peer.send(FakeBroker::message("t", "before") + large.left(first));
    QTRY_COMPARE(listener.payloads(), (QList<QByteArray> { "before" }));
    QTest::qWait(10); // so that the piece is read by itself
    peer.send(large.mid(first) + FakeBroker::message("t", "after"));
    QTRY_COMPARE_WITH_TIMEOUT(listener.received.size(), arrives ? 3 : 2, PatienceMs);
    QCOMPARE(listener.received.last().payload, QByteArray("after"));
    QCOMPARE(listener.client.state(), QMqttClient::Connected);
}

/** Not by asking again and again, and not beyond the end of the connection. */
void TestMessages::anUnfinishedHeadIsWaitedFor()
{
    FakeBroker peer;
    Listener listener(peer.port());
    peer.send(FakeBroker::message("t", "before") + QByteArray::fromHex("3080"));
    QTRY_COMPARE(listener.payloads(), (QList<QByteArray> { "before" }));
    const clock_t before = std::clock();
    QTest::qWait(500);
    QVERIFY2(std::clock() - before < CLOCKS_PER_SEC / 4, "it is busy");
    peer.closeConnection();
    QTRY_COMPARE(listener.client.state(), QMqttClient::Disconnected);
}

void TestMessages::tooLargeAPacketOfAnotherKindEndsTheConnection()
{
    OURS_ALONE("a limit to what a packet may take");
    FakeBroker peer;
    Listener listener(peer.port());
    peer.send(QByteArray::fromHex("90ffffff7f"));
    QTRY_COMPARE(listener.client.state(), QMqttClient::Disconnected);
    QCOMPARE(listener.client.error(), QMqttClient::ProtocolViolation);
}

void TestMessages::messageTellsItsProperties()
{
    Listener listener(m_broker.port());
    listener.client.publish(QLatin1String("properties"), "kept", 1, true);
    QMqttSubscription *const subscription
        = listener.client.subscribe(QLatin1String("properties"), 1);
    QList<QMqttMessage> messages;
    connect(subscription, &QMqttSubscription::messageReceived, this,
        [&](const QMqttMessage &message) { messages.append(message); });
    listener.client.publish(QLatin1String("properties"), "fresh", 0);
    listener.client.publish(QLatin1String("properties"), "fresh", 1);
    QTRY_COMPARE(messages.size(), 3);
    QCOMPARE(messages.at(0).payload(), QByteArray("kept"));
    QCOMPARE(messages.at(0).topic().name(), QString("properties"));
    QVERIFY(messages.at(0).retain());
    QCOMPARE(messages.at(0).qos(), quint8(1));
    QVERIFY(messages.at(0).id() > 0);
    QVERIFY(!messages.at(1).retain());
    QCOMPARE(messages.at(1).qos(), quint8(0));
    QCOMPARE(messages.at(1).id(), quint16(0));
    QVERIFY(!messages.at(1).duplicate());
    QVERIFY(messages.at(1) != messages.at(2));
    QCOMPARE(messages.at(2), QMqttMessage(messages.at(2)));
    listener.client.publish(QLatin1String("properties"), QByteArray(), 0, true);
}

void TestMessages::repeatedDeliveryIsMarked_data()
{
    QTest::addColumn<int>("unconfirmed"); // messages of ours; the library then reads otherwise
    QTest::addColumn<bool>("byteWise");
    QTest::newRow("at once") << 0 << false;
    QTest::newRow("byte by byte") << 0 << true;
    QTest::newRow("at once, unconfirmed messages") << 10 << false;
    QTest::newRow("byte by byte, unconfirmed messages") << 10 << true;
}

void TestMessages::repeatedDeliveryIsMarked()
{
    QFETCH(int, unconfirmed);
    QFETCH(bool, byteWise);
    FakeBroker peer;
    Listener listener(peer.port());
    QMqttSubscription *const subscription = listener.client.subscribe(QLatin1String("t"), 1);
    QStringList order;
    connect(
        subscription, &QMqttSubscription::messageReceived, this, [&](const QMqttMessage &message) {
            order += message.payload() + (message.duplicate() ? " again" : "");
        });
    QTRY_COMPARE(peer.count(FakeBroker::Subscribe), 1);
    peer.answerSubscription(1);
    QTRY_COMPARE(subscription->state(), QMqttSubscription::Subscribed);
    for (int i = 0; i < unconfirmed; ++i)
        listener.client.publish(QLatin1String("a"), "x", 1);
    QTRY_COMPARE(peer.count(FakeBroker::Publish), unconfirmed);
    const QByteArray first = QByteArray::fromHex("320600017400") + "\1a";
    const QByteArray again = QByteArray::fromHex("3a0600017400") + "\1b";
    const QByteArray kept = QByteArray::fromHex("3b0600017400") + "\2c";
    const QByteArray bytes = first + again + FakeBroker::message("t", "d") + kept + first + again;
    if (byteWise)
        peer.sendByteWise(bytes);
    else
        peer.send(bytes);
    QTRY_COMPARE(order, (QStringList { "a", "b again", "d", "c again", "a", "b again" }));
}

void TestMessages::backlogArrivesCompleteAndInOrder()
{
    constexpr int Count = 20000;
    Listener listener(m_broker.port());
    listener.subscribe("backlog");
    {
        Listener publisher(m_broker.port());
        for (int i = 0; i < Count; ++i)
            publisher.client.publish(QLatin1String("backlog"), QByteArray::number(i));
    } // no event loop has run: all of it was sent, and nothing read
    QCOMPARE(listener.received.size(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(listener.received.size(), Count, PatienceMs);
    QCOMPARE(listener.payloads(), numbers(Count));
}

void TestMessages::nothingIsLostOnLeaving_data()
{
    QTest::addColumn<int>("qos");
    QTest::addColumn<bool>("deleted"); // instead of disconnected
    QTest::newRow("qos 0, disconnect") << 0 << false;
    QTest::newRow("qos 1, disconnect") << 1 << false;
    QTest::newRow("qos 2, disconnect") << 2 << false;
    QTest::newRow("qos 0, delete") << 0 << true;
    QTest::newRow("qos 1, delete") << 1 << true;
    QTest::newRow("qos 2, delete") << 2 << true;
}

void TestMessages::nothingIsLostOnLeaving()
{
    OURS_ALONE("the module may close with something unread, which loses messages");
    QFETCH(int, qos);
    QFETCH(bool, deleted);
    const int count = qos == 2 ? 20 : 100; // mosquitto forgets more that are under way at level 2
    Listener observer(m_broker.port());
    observer.subscribe("leaving");
    for (int round = 0; round < 10; ++round) {
        auto publisher = std::make_unique<Listener>(m_broker.port());
        publisher->subscribe("leaving"); // its own echo must not destroy anything either
        for (int i = 0; i < count; ++i) {
            publisher->client.publish(QLatin1String("leaving"), QByteArray::number(i), quint8(qos));
        }
        if (!deleted)
            publisher->client.disconnectFromHost();
        publisher.reset();
        QTRY_COMPARE_WITH_TIMEOUT(observer.received.size(), count, PatienceMs);
        QCOMPARE(observer.payloads(), numbers(count));
        observer.received.clear();
    }
}

void TestMessages::willIsPublishedWhenTheClientVanishes()
{
    MosquittoProcess broker;
    QVERIFY(broker.start("max_packet_size 1000\n"));
    Listener observer(broker.port());
    observer.subscribe("will/#");
    for (const bool leaves : { true, false }) {
        QMqttClient client;
        client.setHostname("127.0.0.1");
        client.setPort(broker.port());
        client.setWillTopic("will/a");
        client.setWillMessage("gone");
        client.connectToHost();
        QTRY_COMPARE(client.state(), QMqttClient::Connected);
        if (leaves)
            client.disconnectFromHost();
        else
            client.publish(QLatin1String("a"), QByteArray(2000, 'x')); // thrown out
        QTRY_COMPARE(client.state(), QMqttClient::Disconnected);
    }
    QTRY_COMPARE(observer.payloads(), QList<QByteArray> { "gone" }); // and not twice
}

void TestMessages::rememberedSessionIsRestored()
{
    OURS_ALONE("the module does not promise this order");
    QMqttClient client;
    client.setHostname("127.0.0.1");
    client.setPort(m_broker.port());
    client.setClientId("remembered");
    client.setCleanSession(false);
    QStringList order;
    connect(&client, &QMqttClient::brokerSessionRestored, this, [&] { order += "restored"; });
    connect(&client, &QMqttClient::connected, this, [&] { order += "connected"; });
    for (int i = 0; i < 2; ++i) {
        client.connectToHost();
        QTRY_COMPARE(client.state(), QMqttClient::Connected);
        client.disconnectFromHost();
    }
    QCOMPARE(order, (QStringList { "connected", "restored", "connected" }));
}

void TestMessages::subscribeNeedsAConnection()
{
    FakeBroker peer;
    QMqttClient client;
    QVERIFY(!client.subscribe(QLatin1String("a")));
    client.setHostname("127.0.0.1");
    client.setPort(peer.port());
    client.connectToHost();
    QVERIFY(!client.subscribe(QLatin1String("a")));
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
    QCOMPARE(peer.count(FakeBroker::Subscribe), 0);
}

void TestMessages::subscribeRefusesNonsense()
{
    Listener listener(m_broker.port());
    QTest::ignoreMessage(QtWarningMsg, "Invalid subscription topic filter.");
    QVERIFY(!listener.client.subscribe(QLatin1String("a#")));
    QTest::ignoreMessage(QtWarningMsg, "Invalid subscription QoS.");
    QVERIFY(!listener.client.subscribe(QLatin1String("a"), 3));
}

void TestMessages::subscriptionIsConfirmed()
{
    Listener listener(m_broker.port());
    QMqttSubscription *const subscription = listener.client.subscribe(QLatin1String("a/#"), 1);
    QCOMPARE(subscription->state(), QMqttSubscription::SubscriptionPending);
    QCOMPARE(subscription->topic(), QMqttTopicFilter(QLatin1String("a/#")));
    QCOMPARE(subscription->qos(), quint8(1));
    QSignalSpy states(subscription, &QMqttSubscription::stateChanged);
    QSignalSpy qos(subscription, &QMqttSubscription::qosChanged);
    QTRY_COMPARE(subscription->state(), QMqttSubscription::Subscribed);
    QCOMPARE(states.count(), 1);
    QCOMPARE(qos.count(), 0);
}

void TestMessages::grantedQosIsTold()
{
    FakeBroker peer;
    Listener listener(peer.port());
    QMqttSubscription *const subscription = listener.client.subscribe(QLatin1String("a"), 2);
    QStringList order;
    connect(subscription, &QMqttSubscription::qosChanged, this,
        [&](quint8 qos) { order += "qos " + QString::number(qos); });
    connect(subscription, &QMqttSubscription::stateChanged, this, [&] { order += "state"; });
    QTRY_COMPARE(peer.count(FakeBroker::Subscribe), 1);
    peer.answerSubscription(1);
    QTRY_COMPARE(order, (QStringList { "qos 1", "state" }));
    QCOMPARE(subscription->qos(), quint8(1));
}

void TestMessages::repeatedFilterGivesTheSameObject()
{
    FakeBroker peer;
    Listener listener(peer.port());
    QMqttSubscription *const first = listener.client.subscribe(QLatin1String("a"));
    QCOMPARE(listener.client.subscribe(QLatin1String("a"), 1), first); // while pending
    QTRY_COMPARE(peer.count(FakeBroker::Subscribe), 1);
    peer.answerSubscription(0);
    QTRY_COMPARE(first->state(), QMqttSubscription::Subscribed);
    QCOMPARE(listener.client.subscribe(QLatin1String("a"), 1), first);
    QCOMPARE(first->qos(), quint8(0));
    QMqttSubscription *const other = listener.client.subscribe(QLatin1String("b"));
    QVERIFY(other && other != first);
    QTRY_COMPARE(peer.count(FakeBroker::Subscribe), 2);
}

void TestMessages::overlappingFiltersGiveOneMessage()
{
    Listener listener(m_broker.port());
    listener.subscribe("over/#");
    listener.subscribe("over/+/x");
    listener.client.publish(QLatin1String("over/1/x"), "1");
    listener.client.publish(QLatin1String("over/2/x"), "2");
    QTRY_COMPARE(listener.payloads(), (QList<QByteArray> { "1", "2" }));
}

void TestMessages::onlyMatchingSubscriptionsEmit()
{
    Listener listener(m_broker.port());
    QStringList order;
    connect(&listener.client, &QMqttClient::messageReceived, this,
        [&](const QByteArray &payload) { order += "client " + payload; });
    for (const QString &filter : { QString("m/a"), QString("m/+"), QString("m/b") }) {
        connect(listener.subscribe(filter), &QMqttSubscription::messageReceived, this,
            [&order, filter](
                const QMqttMessage &message) { order += filter + " " + message.payload(); });
    }
    listener.client.publish(QLatin1String("m/a"), "1");
    listener.client.publish(QLatin1String("m/b"), "2");
    QTRY_COMPARE(order.size(), 6);
    for (const int first : { 1, 4 }) // subscriptions have no order among themselves
        std::sort(order.begin() + first, order.begin() + first + 2);
    QCOMPARE(order, (QStringList { "client 1", "m/+ 1", "m/a 1", "client 2", "m/+ 2", "m/b 2" }));
}

void TestMessages::refusedSubscriptionIsAnError()
{
    FakeBroker peer;
    Listener listener(peer.port());
    QMqttSubscription *const subscription = listener.client.subscribe(QLatin1String("a"));
    QTRY_COMPARE(peer.count(FakeBroker::Subscribe), 1);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(".")); // says so
    peer.answerSubscription(0x80);
    QTRY_COMPARE(subscription->state(), QMqttSubscription::Error);
    QCOMPARE(listener.client.state(), QMqttClient::Connected);
    if (!IsModule)
        QVERIFY(listener.client.subscribe(QLatin1String("a")) != subscription); // tries again
}

void TestMessages::unsubscribing_data()
{
    QTest::addColumn<bool>("byFilter");
    QTest::newRow("by filter") << true;
    QTest::newRow("by object") << false;
}

void TestMessages::unsubscribing()
{
    QFETCH(bool, byFilter);
    Listener listener(m_broker.port());
    const QPointer<QMqttSubscription> subscription(listener.subscribe("u"));
    if (byFilter)
        listener.client.unsubscribe(QLatin1String("u"));
    else
        subscription->unsubscribe();
    QCOMPARE(subscription->state(), QMqttSubscription::UnsubscriptionPending);
    QTRY_COMPARE(subscription->state(), QMqttSubscription::Unsubscribed);
    subscription->unsubscribe(); // once more does nothing
    QCOMPARE(subscription->state(), QMqttSubscription::Unsubscribed);

    listener.subscribe("v");
    listener.client.publish(QLatin1String("u"), "u");
    listener.client.publish(QLatin1String("v"), "v");
    QTRY_COMPARE(listener.payloads(), QList<QByteArray> { "v" });
    QVERIFY(listener.subscribe("u") != subscription);
    QVERIFY(subscription);
}

void TestMessages::unsubscribingAnUnknownFilterDoesNothing()
{
    FakeBroker peer;
    Listener listener(peer.port());
    listener.client.unsubscribe(QLatin1String("unknown"));
    listener.client.publish(QLatin1String("a"));
    QTRY_COMPARE(peer.count(FakeBroker::Publish), 1);
    QCOMPARE(peer.packets().size(), 2);
}

void TestMessages::subscriptionEndsWithItsConnection()
{
    OURS_ALONE("in the module it keeps its state");
    Listener listener(m_broker.port());
    const QPointer<QMqttSubscription> subscription(listener.subscribe("ends"));
    listener.client.disconnectFromHost();
    QVERIFY(subscription);
    QCOMPARE(subscription->state(), QMqttSubscription::Unsubscribed);

    listener.client.connectToHost();
    QTRY_COMPARE(listener.client.state(), QMqttClient::Connected);
    QSignalSpy old(subscription, &QMqttSubscription::messageReceived);
    QVERIFY(listener.subscribe("ends") != subscription);
    listener.client.publish(QLatin1String("ends"), "x");
    QTRY_COMPARE(listener.received.size(), 1);
    QCOMPARE(old.count(), 0);
}

void TestMessages::subscriptionIsDeletedWithTheClient()
{
    auto listener = std::make_unique<Listener>(m_broker.port());
    QStringList order;
    connect(listener->subscribe("a"), &QObject::destroyed, this, [&] { order += "subscription"; });
    connect(&listener->client, &QObject::destroyed, this, [&] { order += "client"; });
    listener.reset();
    QCOMPARE(order, (QStringList { "client", "subscription" }));
}

void TestMessages::deletedSubscriptionIsForgotten()
{
    OURS_ALONE("the module crashes");
    Listener listener(m_broker.port());
    delete listener.subscribe("a");
    delete listener.client.subscribe(QLatin1String("b")); // before the answer
    listener.client.unsubscribe(QLatin1String("a"));
    listener.client.publish(QLatin1String("a"), "x");
    QTRY_COMPARE(listener.received.size(), 1);
    QCOMPARE(listener.subscribe("a")->state(), QMqttSubscription::Subscribed);
}

QTEST_GUILESS_MAIN(TestMessages)
#include "tst_messages.moc"
