// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"
#include "fakebroker.h"
#include "listener.h"
#include "loggedclient.h"
#include "mosquittoprocess.h"
#include "oursalone.h"
#include "signallog.h"
#include "testkit/waiting.h"

#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtTest/QtTest>

#include <functional>
#include <memory>

namespace {

const QStringList Loss { "stateChanged(Disconnected)", "disconnected",
    "errorChanged(TransportInvalid)" };

/** Runs an event loop until the condition holds. */
bool waitInside(const std::function<bool()> &condition)
{
    return QTest::qWaitFor(condition, PatienceMs);
}
} // namespace

Q_DECLARE_METATYPE(std::function<void(QMqttClient *, const std::function<void()> &)>)

/** Slots that do what slots may do: wait, leave, reconnect, delete. */
class TestSlots : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();

    void waitingSlotIsNotEnteredAgain();
    void waitingSlotHoldsBackAllSignals();
    void waitElsewhereDeliversInside();
    void lossDuringTheWaitComesAfterTheMessages();
    void leavingDuringTheWaitIsImmediate();
    void deletionDuringTheWait();
    void waitInConnectedHoldsBackMessages();

    void publishingInASlot();
    void subscribingInASlot();
    void leavingInASlotDiscardsTheRest();
    void deleteLaterInASlotDeliversTheRest();

    void deletionInASlot_data();
    void deletionInASlot();

    void reconnectingInASlot_data();
    void reconnectingInASlot();
    void reconnectingInVainLeavesTheLoopAlive();
    void reconnectingAfterLeavingInASlot();
    void quitSequence();

private:
    MosquittoProcess m_broker;
};

void TestSlots::initTestCase()
{
    QVERIFY(m_broker.start());
}

void TestSlots::waitingSlotIsNotEnteredAgain()
{
    OURS_ALONE("the module goes on with the next byte from the broker only");
    Listener publisher(m_broker.port());

    Listener listener(m_broker.port());
    listener.subscribe("wait");
    int depth = 0;
    int duringTheWait = -1;
    connect(&listener.client, &QMqttClient::messageReceived, this, [&](const QByteArray &payload) {
        QCOMPARE(++depth, 1);
        if (payload == "0") {
            for (int i = 1; i <= 5; ++i)
                publisher.client.publish(QLatin1String("wait"), QByteArray::number(i), 1);
            // The broker serves subscribers before it confirms, so then they are here.
            QVERIFY(waitInside([&] { return publisher.confirmed == 6; }));
            QTest::qWait(50);
            duringTheWait = listener.received.size();
        }
        --depth;
    });
    publisher.client.publish(QLatin1String("wait"), "0", 1);
    QTRY_COMPARE(duringTheWait, 1);
    // Right after the slot, without anything further from the broker.
    QTRY_COMPARE(listener.payloads(), (QList<QByteArray> { "0", "1", "2", "3", "4", "5" }));
}

void TestSlots::waitingSlotHoldsBackAllSignals()
{
    OURS_ALONE("the module goes on with the next byte from the broker only");
    Listener other(m_broker.port());

    Listener listener(m_broker.port());
    listener.subscribe("hold");
    QStringList order;
    connect(&listener.client, &QMqttClient::messageSent, this, [&] { order += "sent"; });
    QMqttSubscription *pending = nullptr;
    connect(&listener.client, &QMqttClient::messageReceived, this, [&] {
        listener.client.publish(QLatin1String("else"), "x", 1);
        pending = listener.client.subscribe(QLatin1String("another"));
        connect(pending, &QMqttSubscription::stateChanged, this, [&] { order += "subscribed"; });
        other.client.publish(QLatin1String("else"), "x", 1);
        QVERIFY(waitInside([&] { return other.confirmed == 2; }));
        QTest::qWait(50);
        order += "returns";
    });
    other.client.publish(QLatin1String("hold"), "x", 1);
    QTRY_COMPARE(order, (QStringList { "returns", "sent", "subscribed" }));
}

void TestSlots::waitElsewhereDeliversInside()
{
    Listener listener(m_broker.port());
    listener.subscribe("elsewhere");
    bool delivered = false;
    QTimer::singleShot(0, this, [&] {
        listener.client.publish(QLatin1String("elsewhere"), "x");
        delivered = waitInside([&] { return listener.received.size() == 1; });
    });
    QTRY_VERIFY(delivered);
}

void TestSlots::lossDuringTheWaitComesAfterTheMessages()
{
    OURS_ALONE("the module tells of the loss at once and drops the messages");
    FakeBroker peer;
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    connect(&client, &QMqttClient::messageReceived, this, [&](const QByteArray &payload) {
        if (payload != "1")
            return;
        peer.send(FakeBroker::message("t", "2") + FakeBroker::message("t", "3"));
        peer.closeConnection();
        QVERIFY(waitInside([&] { return peer.isDeserted(); }));
        QCOMPARE(client.log.entries(), QStringList { "message 1" });
        QCOMPARE(client.state(), QMqttClient::Connected);
    });
    peer.send(FakeBroker::message("t", "1"));
    QTRY_COMPARE(
        client.log.entries(), (QStringList { "message 1", "message 2", "message 3" } + Loss));
}

void TestSlots::leavingDuringTheWaitIsImmediate()
{
    OURS_ALONE("the module does not promise it");
    FakeBroker peer;
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    bool returned = false;
    connect(&client, &QMqttClient::messageReceived, this, [&] {
        QTimer::singleShot(0, &client, &QMqttClient::disconnectFromHost);
        QVERIFY(waitInside([&] { return client.log.contains("disconnected"); }));
        returned = true;
    });
    peer.send(FakeBroker::message("t", "1") + FakeBroker::message("t", "2"));
    QTRY_VERIFY(returned);
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(client.log.entries(),
        (QStringList { "message 1", "stateChanged(Disconnected)", "disconnected" }));

    client.disconnect(this);
    client.connectToHost(); // and all is well afterwards
    QTRY_COMPARE(client.state(), QMqttClient::Connected);
}

void TestSlots::deletionDuringTheWait()
{
    OURS_ALONE("the module does not allow it");
    FakeBroker peer;
    const QPointer<QMqttClient> client(new QMqttClient);
    aim(client, peer.port());
    client->connectToHost();
    QTRY_COMPARE(client->state(), QMqttClient::Connected);
    bool returned = false;
    connect(client, &QMqttClient::messageReceived, this, [&] {
        QTimer::singleShot(0, this, [&] { delete client; });
        QVERIFY(waitInside([&] { return client.isNull(); }));
        returned = true;
    });
    peer.send(FakeBroker::message("t", "1") + FakeBroker::message("t", "2"));
    QTRY_VERIFY(returned);
    QTRY_COMPARE(peer.count(FakeBroker::Disconnect), 1);
}

void TestSlots::waitInConnectedHoldsBackMessages()
{
    OURS_ALONE("the module goes on with the next byte from the broker only");
    FakeBroker peer;
    peer.setAnswer(FakeBroker::acceptance() + FakeBroker::message("t", "1"));
    LoggedClient client(peer.port());
    connect(&client, &QMqttClient::connected, this, [&] {
        peer.send(FakeBroker::message("t", "2"));
        peer.send(QByteArray(2, '\0')); // no such packet, so the connection ends
        QVERIFY(waitInside([&] { return peer.isDeserted(); }));
        QVERIFY(!client.log.contains("message 1"));
    });
    client.connectToHost();
    QTRY_COMPARE(client.state(), QMqttClient::Disconnected);
    QCOMPARE(client.log.entries().mid(3, 2), (QStringList { "message 1", "message 2" }));
}

void TestSlots::publishingInASlot()
{
    Listener listener(m_broker.port());
    listener.subscribe("echo");
    QStringList order;
    connect(&listener.client, &QMqttClient::messageReceived, this, [&](const QByteArray &payload) {
        order += "in " + payload;
        if (payload.size() < 5)
            QVERIFY(listener.client.publish(QLatin1String("echo"), payload + "x", 1) > 0);
        order += "out " + payload;
    });
    listener.client.publish(QLatin1String("echo"), "xxx", 1);
    QTRY_COMPARE(order,
        (QStringList { "in xxx", "out xxx", "in xxxx", "out xxxx", "in xxxxx", "out xxxxx" }));
}

void TestSlots::subscribingInASlot()
{
    QMqttClient client;
    aim(&client, m_broker.port());
    QByteArray received;
    connect(&client, &QMqttClient::connected, this, [&] {
        QVERIFY(client.subscribe(QLatin1String("start")));
        QCOMPARE(client.publish(QLatin1String("start"), "x"), 0);
    });
    connect(&client, &QMqttClient::messageReceived, this,
        [&](const QByteArray &payload) { received = payload; });
    client.connectToHost();
    QTRY_COMPARE(received, QByteArray("x"));
}

void TestSlots::leavingInASlotDiscardsTheRest()
{
    FakeBroker peer;
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    connect(&client, &QMqttClient::messageReceived, &client, &QMqttClient::disconnectFromHost);
    peer.send(FakeBroker::message("t", "1") + FakeBroker::message("t", "2"));
    QTRY_VERIFY(peer.isDeserted());
    QCOMPARE(client.log.entries(),
        (QStringList { "message 1", "stateChanged(Disconnected)", "disconnected" }));
}

void TestSlots::deleteLaterInASlotDeliversTheRest()
{
    FakeBroker peer;
    const QPointer<QMqttClient> client(new QMqttClient);
    aim(client, peer.port());
    client->connectToHost();
    QTRY_COMPARE(client->state(), QMqttClient::Connected);
    QList<QByteArray> received;
    connect(client, &QMqttClient::messageReceived, this, [&](const QByteArray &payload) {
        received += payload;
        client->deleteLater();
    });
    peer.send(FakeBroker::message("t", "1") + FakeBroker::message("t", "2"));
    QTRY_VERIFY(client.isNull());
    QCOMPARE(received, (QList<QByteArray> { "1", "2" }));
}

void TestSlots::deletionInASlot_data()
{
    using Arm = std::function<void(QMqttClient *, const std::function<void()> &)>;
    QTest::addColumn<Arm>("arm"); // makes the deed happen in some slot
    QTest::newRow("Connecting") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::stateChanged, this, [deed](QMqttClient::ClientState state) {
            if (state == QMqttClient::Connecting)
                deed();
        });
    });
    QTest::newRow("Connected") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::stateChanged, this, [deed](QMqttClient::ClientState state) {
            if (state == QMqttClient::Connected)
                deed();
        });
    });
    QTest::newRow("connected") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, this, deed);
    });
    QTest::newRow("subscription confirmed") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, this, [=] {
            connect(client->subscribe(QLatin1String("a")), &QMqttSubscription::stateChanged, this,
                deed);
        });
    });
    QTest::newRow("subscription ended") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, this, [=] {
            connect(client->subscribe(QLatin1String("a")), &QMqttSubscription::stateChanged, this,
                [deed](QMqttSubscription::SubscriptionState state) {
                    if (state == QMqttSubscription::Unsubscribed)
                        deed();
                });
            client->subscribe(QLatin1String("b"));
            client->disconnectFromHost();
        });
    });
    QTest::newRow("message") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, this, [=] {
            client->subscribe(QLatin1String("delete/#"));
            client->publish(QLatin1String("delete/1"), "1");
            client->publish(QLatin1String("delete/2"), "2");
        });
        connect(client, &QMqttClient::messageReceived, this, deed);
    });
    QTest::newRow("subscription's message") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, this, [=] {
            for (const char *filter : { "delete/#", "delete/+" })
                connect(client->subscribe(QString(filter)), &QMqttSubscription::messageReceived,
                    this, deed);
            client->publish(QLatin1String("delete/1"), "1");
            client->publish(QLatin1String("delete/2"), "2");
        });
    });
    QTest::newRow("messageSent") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, this, [=] {
            client->publish(QLatin1String("a"), "1", 1);
            client->publish(QLatin1String("a"), "2", 1);
        });
        connect(client, &QMqttClient::messageSent, this, deed);
    });
    QTest::newRow("Disconnected") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, client, &QMqttClient::disconnectFromHost);
        connect(client, &QMqttClient::stateChanged, this, [deed](QMqttClient::ClientState state) {
            if (state == QMqttClient::Disconnected)
                deed();
        });
    });
    QTest::newRow("disconnected") << Arm([this](QMqttClient *client, const auto &deed) {
        connect(client, &QMqttClient::connected, client, &QMqttClient::disconnectFromHost);
        connect(client, &QMqttClient::disconnected, this, deed);
    });
    QTest::newRow("errorChanged") << Arm([this](QMqttClient *client, const auto &deed) {
        client->setPort(deafPort());
        connect(client, &QMqttClient::errorChanged, this, deed);
    });
    QTest::newRow("refused, disconnected") << Arm([this](QMqttClient *client, const auto &deed) {
        client->setPort(deafPort());
        connect(client, &QMqttClient::disconnected, this, deed);
    });
    QTest::newRow("errorChanged inside the call")
        << Arm([this](QMqttClient *client, const auto &deed) {
               client->setPort(0);
               connect(client, &QMqttClient::errorChanged, this, deed);
           });
}

/** Also under the address sanitizer, which is what sees most of it. */
void TestSlots::deletionInASlot()
{
    OURS_ALONE("the module does not allow it");
    using Arm = std::function<void(QMqttClient *, const std::function<void()> &)>;
    QFETCH(Arm, arm);
    for (const bool later : { false, true }) {
        const QPointer<QMqttClient> client(new QMqttClient);
        aim(client, m_broker.port());
        arm(client, [client, later] {
            if (later && client)
                client->deleteLater();
            else
                delete client;
        });
        client->connectToHost();
        QTRY_VERIFY_WITH_TIMEOUT(client.isNull(), PatienceMs);
    }
}

void TestSlots::reconnectingInASlot_data()
{
    QTest::addColumn<QString>("slot");
    QTest::newRow("stateChanged") << "stateChanged";
    QTest::newRow("disconnected") << "disconnected";
    QTest::newRow("errorChanged") << "errorChanged";
}

void TestSlots::reconnectingInASlot()
{
    OURS_ALONE("the module does not allow it");
    QFETCH(QString, slot);
    FakeBroker peer;
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    QStringList expected { "stateChanged(Disconnected)" };
    if (slot == "stateChanged") {
        connect(&client, &QMqttClient::stateChanged, this, [&](QMqttClient::ClientState state) {
            if (state == QMqttClient::Disconnected)
                client.connectToHost();
        });
    } else if (slot == "disconnected") {
        expected += "disconnected";
        connect(&client, &QMqttClient::disconnected, this, [&] { client.connectToHost(); });
    } else {
        expected = Loss;
        connect(&client, &QMqttClient::errorChanged, this, [&] { client.connectToHost(); });
    }
    expected += { "stateChanged(Connecting)", "stateChanged(Connected)", "connected" };
    peer.closeConnection();
    QTRY_COMPARE(client.log.entries(), expected);
    QCOMPARE(client.error(), QMqttClient::NoError);
}

void TestSlots::reconnectingInVainLeavesTheLoopAlive()
{
    OURS_ALONE("the module does not allow it");
    QMqttClient client;
    aim(&client, deafPort());
    int attempts = 0;
    connect(&client, &QMqttClient::disconnected, this, [&] {
        if (++attempts < 100000) // without an end the test would hang instead of failing
            client.connectToHost();
    });
    client.connectToHost();
    QTRY_VERIFY(attempts > 10); // needs the event loop's timers
    QVERIFY(attempts < 100000);
    client.disconnect(this);
}

void TestSlots::reconnectingAfterLeavingInASlot()
{
    OURS_ALONE("the module does not allow it");
    FakeBroker peer;
    LoggedClient client(peer.port());
    QVERIFY(client.connects());
    connect(&client, &QMqttClient::messageReceived, this, [&](const QByteArray &payload) {
        if (payload == "1") {
            client.disconnectFromHost();
            client.connectToHost();
            QVERIFY(waitInside([&] { return peer.count(FakeBroker::Connect) == 2; }));
            peer.send(FakeBroker::message("t", "3"));
            QTest::qWait(50); // the answer comes now and is kept for later
        }
    });
    peer.send(FakeBroker::message("t", "1") + FakeBroker::message("t", "2"));
    QTRY_COMPARE(client.log.entries(),
        (QStringList { "message 1", "stateChanged(Disconnected)", "disconnected",
            "stateChanged(Connecting)", "stateChanged(Connected)", "connected", "message 3" }));
}

void TestSlots::quitSequence()
{
    auto owner = std::make_unique<QObject>();
    auto *const client = new QMqttClient(owner.get());
    aim(client, m_broker.port());
    client->connectToHost();
    QTRY_COMPARE(client->state(), QMqttClient::Connected);
    SignalLog log(client);
    const QByteArray id = client->clientId().toLatin1();
    client->disconnectFromHost();
    owner.reset();
    QCOMPARE(log.take(), (QStringList { "stateChanged(Disconnected)", "disconnected" }));
    QTRY_VERIFY(m_broker.log().contains(id + " disconnected."));
}

QTEST_GUILESS_MAIN(TestSlots)
#include "tst_slots.moc"
