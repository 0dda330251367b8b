// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QMqttClient>
#include <QObject>
#include <QStringList>
#include <QTimer>

/**
 * The connection of all simulated services to the broker on this machine.
 *
 * What is published before the first connection goes out with it. When the broker goes away, the
 * link comes back by itself as soon as there is one again, and publishes everything retained once
 * more, because the broker may have forgotten it.
 */
class ApplianceLink : public QObject {
    Q_OBJECT

public:
    explicit ApplianceLink(quint16 brokerPort, QObject *parent = nullptr);

    /** What its client id begins with, by which the broker's log tells it from the display. */
    static QString idPrefix() { return QStringLiteral("simulator-"); }

    void connectToBroker();
    /** Says goodbye after everything that was published has left. */
    void disconnectFromBroker();

    /** The topic must be valid. While the broker is away, what is not retained is lost. */
    void publish(const QString &topic, const QByteArray &payload, bool retain);

signals:
    /** Emitted for the first connection and again each time the broker has come back. */
    void connected();
    /** Emitted once each time the broker goes away, however long it stays away. */
    void connectionLost();
    /** The first connection could not be made; there will be no other attempt. */
    void unreachable();
    void commandReceived(const QByteArray &payload);
    void faultReceived(const QByteArray &payload);
    /** What the display reported: @p what is "zone", "idle" or "brightness", or anything new. */
    void displayReported(const QString &what, const QByteArray &payload);

private:
    struct Message {
        QString topic;
        QByteArray payload;
    };

    void becomeConnected();
    void becomeDisconnected();
    void receive(const QByteArray &payload, const QMqttTopicName &topic);

    QMqttClient m_client;
    QTimer m_retry;
    bool m_wasConnected = false; ///< ever
    bool m_isConnected = false;
    QStringList m_retainedTopics; ///< in the order in which they were first published
    QHash<QString, QByteArray> m_retained;
    QVector<Message> m_waiting; ///< not retained, published before the first connection
};
