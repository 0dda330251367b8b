// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QList>
#include <QMqttClient>
#include <QString>

#include <chrono>

class Broker;

/**
 * The appliance's other services, as one client of the broker: publishes what they publish and
 * records, in order, all that arrives at the broker, its own messages included.
 */
class BrokerClient : public QObject {
    Q_OBJECT

public:
    struct Message {
        QString topic;
        QByteArray payload;
        bool retained; ///< kept by the broker, and not published just now
        std::chrono::steady_clock::time_point arrival;
    };

    explicit BrokerClient(QObject *parent = nullptr);

    /** What client ids begin with, by which the broker's log tells a test from the program. */
    static QString idPrefix() { return QStringLiteral("test-"); }

    /** To be called before connecting: the address of another broker than the appliance's. */
    void setAddress(const QString &address) { m_client.setHostname(address); }

    /**
     * Connects and subscribes to everything; false, with a message, when the broker does not
     * confirm it.
     */
    bool connectToBroker();
    /** Starts the broker, then connectToBroker(). */
    bool startBroker(Broker *broker);

    /** Publishes at QoS 1.  The message leaves when the event loop runs. */
    void publish(const QString &topic, const QByteArray &payload, bool retain = false);
    /** Waits until the broker has confirmed every message published so far. */
    bool flush();

    /** Everything received since the last clear(). */
    const QList<Message> &messages() const { return m_messages; }
    /** The payloads received on a topic, in order. */
    QList<QByteArray> payloads(const QString &topic) const;
    /**
     * Waits until that payload has been received on the topic; false, with a message, when it does
     * not come.
     */
    bool waitFor(const QString &topic, const QByteArray &payload);
    void clear() { m_messages.clear(); }

private:
    QMqttClient m_client;
    int m_unconfirmed = 0;
    QList<Message> m_messages;
};
