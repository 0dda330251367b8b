// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtMqtt/qmqttsubscription.h>

#include <QtMqtt/qmqttclient.h>

#include <QtCore/QMetaMethod>

QMqttSubscription::QMqttSubscription(const QMqttTopicFilter &topic, quint8 qos, QMqttClient *client)
    : QObject(client)
    , m_client(client)
    , m_topic(topic)
    , m_qos(qos)
{
    // For queued connections and signal spies: the signal names the type without its class.
    qRegisterMetaType<SubscriptionState>("SubscriptionState");
}

void QMqttSubscription::unsubscribe()
{
    if (m_client && (m_state == SubscriptionPending || m_state == Subscribed))
        m_client->unsubscribe(m_topic);
}

void QMqttSubscription::setState(SubscriptionState state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged(state);
}

void QMqttSubscription::setQos(quint8 qos)
{
    if (m_qos == qos)
        return;
    m_qos = qos;
    emit qosChanged(qos);
}

bool QMqttSubscription::wants(const QMqttMessage &message) const
{
    // Most applications listen to the client only; then the topics need not be compared.
    static const QMetaMethod signal = QMetaMethod::fromSignal(&QMqttSubscription::messageReceived);
    // A broker may send messages before its answer.
    const bool active = m_state == Subscribed || m_state == SubscriptionPending;
    return active && isSignalConnected(signal)
        && m_topic.match(
            message.topic(), QMqttTopicFilter::WildcardsDontMatchDollarTopicMatchOption);
}
