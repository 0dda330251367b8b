// SPDX-License-Identifier: GPL-3.0-or-later
#include "listener.h"

#include "address.h"
#include "testkit/waiting.h"

#include <QtTest/QtTest>

QList<QByteArray> numbers(int count)
{
    QList<QByteArray> list;
    for (int i = 0; i < count; ++i)
        list.append(QByteArray::number(i));
    return list;
}

Listener::Listener(quint16 port)
{
    aim(&client, port);
    QObject::connect(&client, &QMqttClient::messageReceived, &client,
        [this](const QByteArray &payload, const QMqttTopicName &topic) {
            received.append({ topic.name(), payload });
        });
    QObject::connect(&client, &QMqttClient::messageSent, &client, [this] { ++confirmed; });
    client.connectToHost();
    if (!QTest::qWaitFor([this] { return client.state() == QMqttClient::Connected; }, PatienceMs))
        qFatal("No connection to the test's own broker");
}

QMqttSubscription *Listener::subscribe(const QString &filter, quint8 qos)
{
    QMqttSubscription *const subscription = client.subscribe(filter, qos);
    const auto answered = [subscription] {
        return subscription->state() != QMqttSubscription::SubscriptionPending;
    };
    if (!QTest::qWaitFor(answered, PatienceMs))
        qFatal("The test's own broker does not answer");
    return subscription;
}

QList<QByteArray> Listener::payloads() const
{
    QList<QByteArray> list;
    for (const Message &message : received)
        list.append(message.payload);
    return list;
}
