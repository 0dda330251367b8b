// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/brokerclient.h"

#include "testkit/services/broker.h"
#include "testkit/waiting.h"

#include <QMqttMessage>
#include <QMqttSubscription>
#include <QMqttTopicFilter>
#include <QMqttTopicName>

BrokerClient::BrokerClient(QObject *parent)
    : QObject(parent)
{
    m_client.setHostname(QStringLiteral("127.0.0.1"));
    m_client.setPort(1883);
    m_client.setClientId(idPrefix() + m_client.clientId()); // which is a random one
    connect(&m_client, &QMqttClient::messageSent, this, [this] { --m_unconfirmed; });
}

bool BrokerClient::connectToBroker()
{
    m_unconfirmed = 0;
    m_client.connectToHost();
    if (!waitUntil([this] { return m_client.state() == QMqttClient::Connected; })) {
        qWarning("the broker does not accept the test's connection");
        return false;
    }
    QMqttSubscription *const subscription
        = m_client.subscribe(QMqttTopicFilter(QStringLiteral("#")));
    connect(subscription, &QMqttSubscription::messageReceived, this,
        [this](const QMqttMessage &message) {
            m_messages.append({ message.topic().name(), message.payload(), message.retain(),
                std::chrono::steady_clock::now() });
        });
    if (!waitUntil(
            [subscription] { return subscription->state() == QMqttSubscription::Subscribed; })) {
        qWarning("the broker does not confirm the test's subscription");
        return false;
    }
    return true;
}

bool BrokerClient::startBroker(Broker *broker)
{
    return broker->start() && connectToBroker();
}

void BrokerClient::publish(const QString &topic, const QByteArray &payload, bool retain)
{
    if (m_client.publish(topic, payload, 1, retain) > 0)
        ++m_unconfirmed;
    else
        QTest::qFail(qPrintable(QStringLiteral("cannot publish on ") + topic), __FILE__, __LINE__);
}

bool BrokerClient::flush()
{
    return waitUntil([this] { return m_unconfirmed == 0; });
}

QList<QByteArray> BrokerClient::payloads(const QString &topic) const
{
    QList<QByteArray> found;
    for (const Message &message : m_messages) {
        if (message.topic == topic)
            found.append(message.payload);
    }
    return found;
}

bool BrokerClient::waitFor(const QString &topic, const QByteArray &payload)
{
    if (waitUntil([&] { return payloads(topic).contains(payload); }))
        return true;
    qWarning("nothing like this arrived at the broker: %s %s", qUtf8Printable(topic),
        payload.constData());
    return false;
}
