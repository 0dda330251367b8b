// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/appliancelink.h"

#include "simulator/services/topics.h"

#include <QMqttTopicFilter>
#include <QMqttTopicName>

namespace {

constexpr int RetryMs = 500;

} // namespace

ApplianceLink::ApplianceLink(quint16 brokerPort, QObject *parent)
    : QObject(parent)
{
    m_client.setHostname(QStringLiteral("127.0.0.1"));
    m_client.setPort(brokerPort);
    m_client.setClientId(idPrefix() + m_client.clientId()); // which is a random one
    m_client.setAutoKeepAlive(true);
    m_retry.setSingleShot(true);
    m_retry.setInterval(RetryMs);
    connect(&m_retry, &QTimer::timeout, this, &ApplianceLink::connectToBroker);
    connect(&m_client, &QMqttClient::connected, this, &ApplianceLink::becomeConnected);
    connect(&m_client, &QMqttClient::disconnected, this, &ApplianceLink::becomeDisconnected);
    connect(&m_client, &QMqttClient::messageReceived, this, &ApplianceLink::receive);
}

void ApplianceLink::connectToBroker()
{
    m_client.connectToHost();
}

void ApplianceLink::disconnectFromBroker()
{
    m_client.disconnect(this);
    m_client.disconnectFromHost();
}

void ApplianceLink::publish(const QString &topic, const QByteArray &payload, bool retain)
{
    if (retain) {
        if (!m_retained.contains(topic))
            m_retainedTopics.append(topic);
        m_retained.insert(topic, payload);
    }
    if (m_client.state() == QMqttClient::Connected)
        m_client.publish(topic, payload, 0, retain);
    else if (!m_wasConnected && !retain)
        m_waiting.append({ topic, payload });
}

void ApplianceLink::becomeConnected()
{
    m_wasConnected = true;
    m_isConnected = true;
    // The commands first: a zone that is seen must not be deaf to them.
    m_client.subscribe(QMqttTopicFilter(Topics::command()), 1);
    m_client.subscribe(QMqttTopicFilter(Topics::display() + QLatin1Char('#')), 1);
    m_client.subscribe(QMqttTopicFilter(Topics::fault()), 1);
    for (const QString &topic : qAsConst(m_retainedTopics))
        m_client.publish(topic, m_retained.value(topic), 0, true);
    for (const Message &message : qAsConst(m_waiting))
        m_client.publish(message.topic, message.payload, 0, false);
    m_waiting.clear();
    emit connected();
}

void ApplianceLink::becomeDisconnected()
{
    if (!m_wasConnected) {
        emit unreachable();
        return;
    }
    m_retry.start();
    if (m_isConnected) { // rather than still without a broker
        m_isConnected = false;
        emit connectionLost();
    }
}

void ApplianceLink::receive(const QByteArray &payload, const QMqttTopicName &topic)
{
    const QString name = topic.name();
    if (name == Topics::command())
        emit commandReceived(payload);
    else if (name == Topics::fault())
        emit faultReceived(payload);
    else
        emit displayReported(name.mid(Topics::display().size()), payload);
}
