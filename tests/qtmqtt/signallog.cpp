// SPDX-License-Identifier: GPL-3.0-or-later
#include "signallog.h"

#include <QtCore/QMetaEnum>

#include <utility>

namespace {
template <typename Enum> QString name(Enum value)
{
    const char *key = QMetaEnum::fromType<Enum>().valueToKey(value);
    return key ? QString::fromLatin1(key) : QString::number(value);
}
} // namespace

SignalLog::SignalLog(QMqttClient *client)
    : m_client(client)
{
    QObject::connect(client, &QMqttClient::stateChanged, &m_context,
        [this](QMqttClient::ClientState state) { add("stateChanged(" + name(state) + ")"); });
    QObject::connect(client, &QMqttClient::connected, &m_context, [this] { add("connected"); });
    QObject::connect(
        client, &QMqttClient::disconnected, &m_context, [this] { add("disconnected"); });
    QObject::connect(client, &QMqttClient::messageReceived, &m_context,
        [this](const QByteArray &payload) { add("message " + QString::fromUtf8(payload)); });
    QObject::connect(
        client, &QMqttClient::errorChanged, &m_context, [this](QMqttClient::ClientError error) {
            m_entries += "errorChanged(" + name(error) + ")";
        });
}

QStringList SignalLog::take()
{
    return std::exchange(m_entries, {});
}

void SignalLog::add(const QString &entry)
{
    const QMqttClient::ClientError error = m_client->error();
    m_entries += error == QMqttClient::NoError ? entry : entry + " !" + name(error);
}
