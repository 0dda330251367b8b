// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <QMqttClient>
#include <QMqttTopicName>

class RoonZone;

/**
 * The program's link to the appliance's services: one connection to the broker on this machine.
 *
 * Messages enter here: processMessageApi() finds the target of a message by its topic, the update
 * methods write one property of it by name. Commands and reports leave through publish(). A lost
 * connection stays lost until the program is started again. Main thread only.
 */
class Mqtt : public QObject {
    Q_OBJECT

public:
    /** The one object; the first call makes it and starts connecting. Deleted at quit. */
    static Mqtt *instance();

    /** Starts connecting to @p port of this machine; the result comes by the event loop. */
    explicit Mqtt(quint16 port = 1883, QObject *parent = nullptr);
    /** Disconnects from the broker. */
    ~Mqtt() override;

    /** True from when the subscriptions have been asked for until the connection is lost. */
    bool isConnected() const { return m_connected; }

    /** Asks for the messages of the topic filter @p topic, at QoS 0; the answer is not awaited. */
    void subscribe(const QString &topic);

    /**
     * Brings a message to its target. One for an unknown topic or property, or for no zone, is
     * logged and dropped; a command that is not a JSON object with a "command" is dropped.
     */
    void processMessageApi(const QByteArray &payload, const QMqttTopicName &topic);

    // Each writes @p payload to the property that the last of the topic's @p levels name, and
    // returns whether it did. An unknown name is logged as a warning. Numbers that do not parse, do
    // not fit or are not finite count as 0; a flag is false for an empty text, "0" and "false".

    /** A property of Roon. A "coreDetected" notifies twice. */
    bool updateRoon(const QStringList &levels, const QByteArray &payload);
    /** A property of @p zone, or its outputs. */
    bool updateZone(RoonZone *zone, const QStringList &levels, const QByteArray &payload);
    /** A property of Spotify. */
    bool updateSpotify(const QStringList &levels, const QByteArray &payload);
    /** A property of VelunorState. The payload counts as a flag even for a text. */
    bool updateVelunorState(const QStringList &levels, const QByteArray &payload);
    /** A property of Settings. Always true; an unknown key changes nothing, without a warning. */
    bool updateSettings(const QStringList &levels, const QByteArray &payload);

public slots:
    /**
     * Publishes @p payload on @p topic, at @p qos 0 to 2. With @p cache, a payload equal to the
     * last one that was published on this topic with @p cache is not sent again, unless it is
     * empty; any payload that follows a non-empty one is logged. Without a connection nothing is
     * sent and nothing is reported; the cache remembers the payload all the same.
     */
    void publish(QString topic, QByteArray payload, bool retain, uchar qos = 0, bool cache = false);

signals:
    /** The broker has accepted the connection and the subscriptions have been asked for. */
    void connected();

private slots:
    void connectionTimeout(); // Deliberate: a spare slot, nothing calls it
    void connectedToBroker();
    void brokerDisconnected();
    void error(QMqttClient::ClientError code);
    void messageReceived(QByteArray payload, QMqttTopicName topic);

private:
    void processRemoteConnected(const QByteArray &payload);
    void processCommand(const QByteArray &payload);
    void processZone(const QStringList &levels, const QByteArray &payload);

    QMqttClient *m_client;
    QMap<QString, QByteArray> m_cache;
    bool m_connected = false;
};
