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
        /** Ended, by unsubscribe() or with its connection. */
        Unsubscribed = 0,
        /** From the start until the broker answers. */
        SubscriptionPending,
        /** The broker has agreed. */
        Subscribed,
        /** From unsubscribe() until the broker answers. */
        UnsubscriptionPending,
        /** The broker refused the subscription. */
        Error
    };
    Q_ENUM(SubscriptionState)

    /** SubscriptionPending at first; never back from Unsubscribed or Error. */
    SubscriptionState state() const { return m_state; }
    /** What was subscribed to; always valid, and the same for life. */
    QMqttTopicFilter topic() const { return m_topic; }
    /** The quality of service asked for, 0 to 2; from Subscribed on, the one that was granted. */
    quint8 qos() const { return m_qos; }

Q_SIGNALS:
    /**
     * Emitted for each change: inside unsubscribe() and disconnectFromHost(), otherwise from the
     * event loop.  Not for the first state.
     */
    void stateChanged(SubscriptionState state);
    /**
     * The broker has granted another quality of service than was asked for; before
     * stateChanged(Subscribed).
     */
    void qosChanged(quint8 qos);
    /**
     * A message matching topic() came while Subscribed or pending; emitted after the client's own
     * signal, and like that not for one that was dropped.
     */
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
