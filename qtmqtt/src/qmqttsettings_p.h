// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtMqtt/qmqttclient.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

/** What an application has set before it connects. */
struct QMqttSettings {
    QString hostname;
    quint16 port = 0;
    QString clientId;
    quint16 keepAlive = 60; // seconds
    bool autoKeepAlive = true;
    QMqttClient::ProtocolVersion protocolVersion = QMqttClient::MQTT_3_1_1;
    bool cleanSession = true;
    QString username;
    QString password;
    QString willTopic;
    QByteArray willMessage;
    quint8 willQoS = 0;
    bool willRetain = false;
};
