// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtMqtt/QMqttClient>

/** The payloads "0", "1", "2" and so on, by which the order of messages is told. */
QList<QByteArray> numbers(int count);

/** A connected client that notes what it receives. */
class Listener {
public:
    struct Message {
        QString topic;
        QByteArray payload;
    };

    /** Connects to 127.0.0.1 and waits for it; aborts the test program if that does not work. */
    explicit Listener(quint16 port);

    /** Subscribes and waits for the answer. */
    QMqttSubscription *subscribe(const QString &filter, quint8 qos = 0);
    QList<QByteArray> payloads() const;

    QList<Message> received; // these two outlive the client
    int confirmed = 0;       ///< how many messages of its own have been confirmed, or sent at QoS 0
    QMqttClient client;
};
