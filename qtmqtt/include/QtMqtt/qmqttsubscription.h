// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqttmessage.h"
#include "qmqtttopicfilter.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

class QMqttClient;

/**
 * One subscription made with QMqttClient::subscribe(); the client owns it and it lives as long as
 * the client, unless the application deletes it earlier (which does not unsubscribe).
 *
 * It belongs to one connection: when that ends, the state becomes Unsubscribed for good.
 */
class QMqttSubscription : public QObject {
    Q_OBJECT
    Q_PROPERTY(SubscriptionState state READ state NOTIFY stateChanged)
    Q_PROPERTY(quint8 qos READ qos NOTIFY qosChanged)
    Q_PROPERTY(QMqttTopicFilter topic READ topic)
public:
    enum SubscriptionState {
        Unsubscribed = 0,
        SubscriptionPending,
        Subscribed,
        UnsubscriptionPending,
        /** The broker refused the subscription. */
        Error
    };
    Q_ENUM(SubscriptionState)

    SubscriptionState state() const { return m_state; }
    QMqttTopicFilter topic() const { return m_topic; }
    /** The quality of service asked for; from Subscribed on, the one that was granted. */
    quint8 qos() const { return m_qos; }

Q_SIGNALS:
    void stateChanged(SubscriptionState state);
    void qosChanged(quint8 qos);
    /** A message matching topic() came while Subscribed or pending; emitted after the client's own
     * signal. */
    void messageReceived(QMqttMessage message);

public Q_SLOTS:
    /** Ends the subscription; does nothing unless it is Subscribed or pending. */
    void unsubscribe();

private:
    friend class QMqttClientPrivate;
    QMqttSubscription(const QMqttTopicFilter &topic, quint8 qos, QMqttClient *client);

    void setState(SubscriptionState state);
    void setQos(quint8 qos);
    bool wants(const QMqttMessage &message) const;

    QPointer<QMqttClient> m_client;
    QMqttTopicFilter m_topic;
    quint8 m_qos = 0;
    SubscriptionState m_state = SubscriptionPending;
};
