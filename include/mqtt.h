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
 * The program's only link to the appliance's services: one connection to the broker on this
 * machine.
 *
 * Messages enter here: processMessageApi() finds the target of a message by its topic, the update
 * methods write one property of it by name. Commands and reports leave through publish(). A lost
 * connection stays lost until the program is started again. Main thread only.
 */
class Mqtt : public QObject {
    Q_OBJECT

public:
    /** The one object; the first call makes it and starts connecting. Deleted by the program when
     * it quits. */
    static Mqtt *instance();

    /** Starts connecting to the broker on this machine, at @p port; the result arrives by the event
     * loop. */
    explicit Mqtt(quint16 port = 1883, QObject *parent = nullptr);
    ~Mqtt() override;

    /** True from the moment the subscriptions were made until the connection is lost. */
    bool isConnected() const { return m_connected; }

    void subscribe(const QString &topic);

    /** Brings a message to its target. Odd messages are logged and dropped. */
    void processMessageApi(const QByteArray &payload, const QMqttTopicName &topic);

    // Each writes the value @p payload to one property, and says whether it did.  @p levels are
    // those of the topic.
    bool updateRoon(const QStringList &levels, const QByteArray &payload);
    bool updateZone(RoonZone *zone, const QStringList &levels, const QByteArray &payload);
    bool updateSpotify(const QStringList &levels, const QByteArray &payload);
    bool updateVelunorState(const QStringList &levels, const QByteArray &payload);
    /** Always true; an unknown key changes nothing. */
    bool updateSettings(const QStringList &levels, const QByteArray &payload);

public slots:
    /**
     * Publishes @p payload on @p topic. With @p cache, a payload equal to the last one that was
     * published on this topic with @p cache is not sent again, and a payload that comes after one
     * which was not empty has its line in the log. While there is no connection nothing is sent,
     * without a further word; the cache remembers the payload all the same.
     */
    void publish(QString topic, QByteArray payload, bool retain, uchar qos = 0, bool cache = false);

signals:
    /** Connected and subscribed. */
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
