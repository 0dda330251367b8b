// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqttconnection_p.h"

#include <QtCore/QHash>
#include <QtCore/QPointer>

#include <memory>
#include <vector>

/** State, subscriptions and signals of a QMqttClient. */
class QMqttClientPrivate {
public:
    explicit QMqttClientPrivate(QMqttClient *client);
    ~QMqttClientPrivate();

    void connectToHost(bool encrypted);
    void disconnectFromHost();
    QMqttSubscription *subscribe(const QMqttTopicFilter &filter, quint8 qos);
    void unsubscribe(const QMqttTopicFilter &filter);
    qint32 publish(const QMqttTopicName &topic, const QByteArray &message, quint8 qos, bool retain);

    bool requestPing();

    QMqttClient::ClientState state() const { return m_state; }
    QMqttClient::ClientError error() const { return m_error; }

    /**
     * Enters a state and tells: state first, then the event, then the error, as far as slots allow.
     */
    void enter(
        QMqttClient::ClientState state, QMqttClient::ClientError error = QMqttClient::NoError);
    void setError(QMqttClient::ClientError error);

    /**
     * Changes one of the settings and tells; not while a connection exists, which has a copy of
     * them.
     */
    template <typename T> void set(T &setting, const T &value, void (QMqttClient::*changed)(T))
    {
        if (m_state != QMqttClient::Disconnected || setting == value)
            return;
        setting = value;
        emit(q->*changed)(value);
    }

    QMqttSettings settings;

private:
    using Subscription = QPointer<QMqttSubscription>; // null once the application has deleted it

    void scheduleDelivery();
    void deliver();
    void handle(const QMqttConnection::Accepted &event);
    void handle(const QMqttConnection::MessageArrived &event);
    void handle(const QMqttConnection::PublishConfirmed &event);
    void handle(const QMqttConnection::SubscribeAnswered &event);
    void handle(const QMqttConnection::UnsubscribeAnswered &event);
    void handle(const QMqttConnection::PingAnswered &event);
    void handle(const QMqttConnection::Ended &event);
    void finish(QMqttClient::ClientError error);
    void forget(const QMqttSubscription *subscription);

    QMqttClient *const q;
    QMqttClient::ClientState m_state = QMqttClient::Disconnected;
    QMqttClient::ClientError m_error = QMqttClient::NoError;
    quint64 m_transitions = 0; // tells whether a slot has moved the client on
    bool m_delivering = false;
    std::unique_ptr<QMqttConnection> m_connection;
    std::vector<Subscription> m_subscriptions; // pending and active, in the order they were made
    QHash<int, Subscription> m_unanswered;     // by the id of the request
};
