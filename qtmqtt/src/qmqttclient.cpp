// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtMqtt/qmqttclient.h>

#include "qmqttclient_p.h"

QMqttClient::QMqttClient(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<QMqttClientPrivate>(this))
{
    // For queued connections and signal spies: the signals name these types without their class.
    qRegisterMetaType<ClientState>("ClientState");
    qRegisterMetaType<ClientError>("ClientError");
    qRegisterMetaType<ProtocolVersion>("ProtocolVersion");
}

QMqttClient::~QMqttClient() = default;

QMqttSubscription *QMqttClient::subscribe(const QMqttTopicFilter &topic, quint8 qos)
{
    return d->subscribe(topic, qos);
}

QMqttSubscription *QMqttClient::subscribe(
    const QMqttTopicFilter &topic, const QMqttSubscriptionProperties &, quint8 qos)
{
    return d->subscribe(topic, qos);
}

void QMqttClient::unsubscribe(const QMqttTopicFilter &topic)
{
    d->unsubscribe(topic);
}

void QMqttClient::unsubscribe(const QMqttTopicFilter &topic, const QMqttUnsubscriptionProperties &)
{
    d->unsubscribe(topic);
}

qint32 QMqttClient::publish(
    const QMqttTopicName &topic, const QByteArray &message, quint8 qos, bool retain)
{
    return d->publish(topic, message, qos, retain);
}

qint32 QMqttClient::publish(const QMqttTopicName &topic, const QMqttPublishProperties &,
    const QByteArray &message, quint8 qos, bool retain)
{
    return d->publish(topic, message, qos, retain);
}

bool QMqttClient::requestPing()
{
    return d->requestPing();
}

QString QMqttClient::hostname() const
{
    return d->settings.hostname;
}

quint16 QMqttClient::port() const
{
    return d->settings.port;
}

QString QMqttClient::clientId() const
{
    return d->settings.clientId;
}

quint16 QMqttClient::keepAlive() const
{
    return d->settings.keepAlive;
}

QMqttClient::ProtocolVersion QMqttClient::protocolVersion() const
{
    return d->settings.protocolVersion;
}

QMqttClient::ClientState QMqttClient::state() const
{
    return d->state();
}

QMqttClient::ClientError QMqttClient::error() const
{
    return d->error();
}

QString QMqttClient::username() const
{
    return d->settings.username;
}

QString QMqttClient::password() const
{
    return d->settings.password;
}

bool QMqttClient::cleanSession() const
{
    return d->settings.cleanSession;
}

QString QMqttClient::willTopic() const
{
    return d->settings.willTopic;
}

QByteArray QMqttClient::willMessage() const
{
    return d->settings.willMessage;
}

quint8 QMqttClient::willQoS() const
{
    return d->settings.willQoS;
}

bool QMqttClient::willRetain() const
{
    return d->settings.willRetain;
}

bool QMqttClient::autoKeepAlive() const
{
    return d->settings.autoKeepAlive;
}

void QMqttClient::connectToHost()
{
    connectToHost(false, QString());
}

void QMqttClient::connectToHostEncrypted(const QString &sslPeerName)
{
    connectToHost(true, sslPeerName);
}

void QMqttClient::connectToHostEncrypted(const QSslConfiguration &)
{
    connectToHost(true, QString());
}

void QMqttClient::connectToHost(bool encrypted, const QString &)
{
    d->connectToHost(encrypted);
}

void QMqttClient::disconnectFromHost()
{
    d->disconnectFromHost();
}

void QMqttClient::setHostname(const QString &hostname)
{
    d->set(d->settings.hostname, hostname, &QMqttClient::hostnameChanged);
}

void QMqttClient::setPort(quint16 port)
{
    d->set(d->settings.port, port, &QMqttClient::portChanged);
}

void QMqttClient::setClientId(const QString &clientId)
{
    d->set(d->settings.clientId, clientId, &QMqttClient::clientIdChanged);
}

void QMqttClient::setKeepAlive(quint16 keepAlive)
{
    d->set(d->settings.keepAlive, keepAlive, &QMqttClient::keepAliveChanged);
}

void QMqttClient::setProtocolVersion(ProtocolVersion protocolVersion)
{
    if (protocolVersion == MQTT_3_1 || protocolVersion == MQTT_3_1_1)
        d->set(d->settings.protocolVersion, protocolVersion, &QMqttClient::protocolVersionChanged);
}

void QMqttClient::setState(ClientState state)
{
    if (d->state() != state)
        d->enter(state);
}

void QMqttClient::setError(ClientError error)
{
    d->setError(error);
}

void QMqttClient::setUsername(const QString &username)
{
    d->set(d->settings.username, username, &QMqttClient::usernameChanged);
}

void QMqttClient::setPassword(const QString &password)
{
    d->set(d->settings.password, password, &QMqttClient::passwordChanged);
}

void QMqttClient::setCleanSession(bool cleanSession)
{
    d->set(d->settings.cleanSession, cleanSession, &QMqttClient::cleanSessionChanged);
}

void QMqttClient::setWillTopic(const QString &willTopic)
{
    d->set(d->settings.willTopic, willTopic, &QMqttClient::willTopicChanged);
}

void QMqttClient::setWillMessage(const QByteArray &willMessage)
{
    d->set(d->settings.willMessage, willMessage, &QMqttClient::willMessageChanged);
}

void QMqttClient::setWillQoS(quint8 willQoS)
{
    if (willQoS <= 2)
        d->set(d->settings.willQoS, willQoS, &QMqttClient::willQoSChanged);
}

void QMqttClient::setWillRetain(bool willRetain)
{
    d->set(d->settings.willRetain, willRetain, &QMqttClient::willRetainChanged);
}

void QMqttClient::setAutoKeepAlive(bool autoKeepAlive)
{
    d->set(d->settings.autoKeepAlive, autoKeepAlive, &QMqttClient::autoKeepAliveChanged);
}
