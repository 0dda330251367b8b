// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqttglobal.h"
#include "qmqttmessage.h"
#include "qmqttmessagestatusproperties.h"
#include "qmqttpublishproperties.h"
#include "qmqttsubscription.h"
#include "qmqttsubscriptionproperties.h"
#include "qmqtttopicfilter.h"
#include "qmqtttopicname.h"
#include "qmqttunsubscriptionproperties.h"

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>

#include <memory>

QT_FORWARD_DECLARE_CLASS(QSslConfiguration)
class QMqttClientPrivate;

/**
 * A client of an MQTT 3.1.1 (or 3.1) broker, driven by the event loop of the thread it lives in.
 *
 * Order of signals: stateChanged(), then connected() or disconnected(), then errorChanged() if
 * there was an error; during the first two error() still returns NoError.  Signals come from the
 * event loop, except those of a call that takes effect at once (connectToHost() and
 * disconnectFromHost()).
 *
 * While a slot of one of the signals that come from the event loop has not returned, the client
 * emits no other of them, not even if that slot runs an event loop of its own.  What arrives
 * meanwhile is read and kept, and delivered in order as soon as the slot has returned.
 *
 * Every slot may delete the client, disconnect it or connect it again.
 *
 * There is no automatic reconnection, and subscriptions are not repeated: an application does both.
 * The properties can be set while Disconnected; at other times a setter does nothing, as it does
 * with a value that the property has already.
 *
 * The names that are overloaded are those that the Qt module overloads, so that a function whose
 * address can be taken there can be taken here, and no other: use a lambda for connectToHost().
 */
class QMqttClient : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString clientId READ clientId WRITE setClientId NOTIFY clientIdChanged)
    Q_PROPERTY(QString hostname READ hostname WRITE setHostname NOTIFY hostnameChanged)
    Q_PROPERTY(quint16 port READ port WRITE setPort NOTIFY portChanged)
    Q_PROPERTY(quint16 keepAlive READ keepAlive WRITE setKeepAlive NOTIFY keepAliveChanged)
    Q_PROPERTY(ProtocolVersion protocolVersion READ protocolVersion WRITE setProtocolVersion NOTIFY
            protocolVersionChanged)
    Q_PROPERTY(ClientState state READ state NOTIFY stateChanged)
    Q_PROPERTY(ClientError error READ error NOTIFY errorChanged)
    Q_PROPERTY(QString username READ username WRITE setUsername NOTIFY usernameChanged)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY passwordChanged)
    Q_PROPERTY(bool cleanSession READ cleanSession WRITE setCleanSession NOTIFY cleanSessionChanged)
    Q_PROPERTY(QString willTopic READ willTopic WRITE setWillTopic NOTIFY willTopicChanged)
    Q_PROPERTY(
        QByteArray willMessage READ willMessage WRITE setWillMessage NOTIFY willMessageChanged)
    Q_PROPERTY(quint8 willQoS READ willQoS WRITE setWillQoS NOTIFY willQoSChanged)
    Q_PROPERTY(bool willRetain READ willRetain WRITE setWillRetain NOTIFY willRetainChanged)
    Q_PROPERTY(
        bool autoKeepAlive READ autoKeepAlive WRITE setAutoKeepAlive NOTIFY autoKeepAliveChanged)
public:
    /** What a connection can run over.  Known by name only: here it is always a TCP socket. */
    enum TransportType { IODevice = 0, AbstractSocket, SecureSocket };

    enum ClientState {
        /** There is no connection, and none is being made. */
        Disconnected = 0,
        /** From connectToHost() until the broker has accepted, or the attempt has failed. */
        Connecting,
        /** The broker has accepted; only now can be published and subscribed. */
        Connected
    };
    Q_ENUM(ClientState)

    /**
     * 1 to 5 are the broker's refusals; a refusal with another number is passed on as that number.
     */
    enum ClientError {
        /** All is well, as far as is known. */
        NoError = 0,
        /** The broker does not speak protocolVersion(). */
        InvalidProtocolVersion = 1,
        /**
         * Also when the client id cannot be sent, or there is none for a session that is to be
         * remembered.
         */
        IdRejected = 2,
        /** Also when the broker did not answer for the keep-alive time. */
        ServerUnavailable = 3,
        /** Also when they cannot be sent, or there is a password without a user. */
        BadUsernameOrPassword = 4,
        /** The broker does not let this client in. */
        NotAuthorized = 5,
        /** The network connection could not be made, or was lost. */
        TransportInvalid = 256,
        /**
         * What came was not MQTT, or not what the broker may send then, or more than 16 MB and no
         * message; or the will cannot be sent.
         */
        ProtocolViolation,
        /** Never reported. */
        UnknownError,
        /** Never reported. */
        Mqtt5SpecificError
    };
    Q_ENUM(ClientError)

    enum ProtocolVersion {
        /** The one before the standard. */
        MQTT_3_1 = 3,
        /** The usual one. */
        MQTT_3_1_1 = 4,
        /** Known by name only; setProtocolVersion() does not take it. */
        MQTT_5_0 = 5
    };
    Q_ENUM(ProtocolVersion)

    /** Disconnected, with a random client id, for the protocol version MQTT_3_1_1. */
    explicit QMqttClient(QObject *parent = nullptr);

    /** Leaves the broker like disconnectFromHost(), but without any signal. */
    ~QMqttClient() override;

    /**
     * Subscribes and returns the subscription, which the client owns; its state tells the outcome.
     * A filter that is already subscribed (or pending) gives the same object and sends nothing.
     *
     * Null, and nothing is sent, unless Connected, with an invalid filter or with @p qos above 2;
     * the latter two also log a warning.  Null without a warning for a filter that cannot be sent:
     * with control characters, or of more than 65535 bytes.
     */
    QMqttSubscription *subscribe(const QMqttTopicFilter &topic, quint8 qos = 0);
    /** The same: before MQTT 5 there are no properties to send. */
    QMqttSubscription *subscribe(const QMqttTopicFilter &topic,
        const QMqttSubscriptionProperties &properties, quint8 qos = 0);

    /** Ends the subscription to exactly this filter; does nothing if there is none. */
    void unsubscribe(const QMqttTopicFilter &topic);
    /** The same: before MQTT 5 there are no properties to send. */
    void unsubscribe(
        const QMqttTopicFilter &topic, const QMqttUnsubscriptionProperties &properties);

    /**
     * Sends a message and returns 0 at quality of service 0, otherwise its id (above 0), which
     * messageSent() reports once the broker has confirmed it.  An empty message with @p retain
     * deletes the one the broker keeps.
     *
     * -1, and nothing is sent or kept for later, unless Connected, with an invalid topic or one
     * that cannot be sent (with control characters, or of more than 65535 bytes), with @p qos above
     * 2 or for a message over 256 MB.  It leaves when the event loop runs; a connection that is
     * broken without our knowing takes messages, and loses them.
     *
     * When the connection is lost, messages not yet confirmed are dropped; none is sent again.
     */
    Q_INVOKABLE qint32 publish(const QMqttTopicName &topic,
        const QByteArray &message = QByteArray(), quint8 qos = 0, bool retain = false);
    /** The same: before MQTT 5 there are no properties to send. */
    qint32 publish(const QMqttTopicName &topic, const QMqttPublishProperties &properties,
        const QByteArray &message = QByteArray(), quint8 qos = 0, bool retain = false);

    /**
     * Sends a ping, after what is being sent.  False, and nothing is sent, unless Connected, and
     * while autoKeepAlive() does it.
     */
    bool requestPing();

    /**
     * Name or address of the broker.  A name may have several addresses; they are tried in order,
     * until one of them answers as a broker does.
     */
    QString hostname() const;
    /** 1 to 65535; 0 until set. */
    quint16 port() const;
    /** 23 random hexadecimal digits until set.  Empty: the broker makes one up. */
    QString clientId() const;
    /**
     * Seconds of silence after which a ping is sent, 60 until set; 0: never.  1 to 4 have the
     * effect of 5.
     */
    quint16 keepAlive() const;
    /** MQTT_3_1_1 until set; MQTT_3_1 is the only other one that it can be set to. */
    ProtocolVersion protocolVersion() const;
    /** As stateChanged() has told it: does not run ahead of the signals. */
    ClientState state() const;
    /** The last error; back to NoError, without a signal, when connecting starts. */
    ClientError error() const;
    /** Empty, as it is until set: none. */
    QString username() const;
    /** Empty, as it is until set: none.  Goes over the wire as it is, and with a user name only. */
    QString password() const;
    /**
     * True, as it is until set: the broker forgets this client when the connection ends.  False: it
     * keeps subscriptions and messages for it, which needs a client id that stays the same.
     */
    bool cleanSession() const;
    /**
     * The topic of the message the broker publishes should this client vanish; empty, as it is
     * until set: no message.
     */
    QString willTopic() const;
    /** That message, of 65535 bytes at most; empty until set. */
    QByteArray willMessage() const;
    /** Its quality of service: 0, as it is until set, 1 or 2; setting anything else is ignored. */
    quint8 willQoS() const;
    /** Whether the broker keeps it for later subscribers; false until set. */
    bool willRetain() const;
    /**
     * Whether pings are sent by themselves; true until set.  Without them the broker ends a silent
     * connection, and nobody notices a broker that has fallen silent.
     */
    bool autoKeepAlive() const;

    /**
     * Starts to connect; does nothing unless Disconnected.  Name lookup and network connection run
     * in the background, for the keep-alive time at most (without a limit if that is 0 or off).
     *
     * Without a host name or port only errorChanged(TransportInvalid) is emitted, inside the call.
     *
     * Settings that cannot be sent as they are (control characters, a password without a user name,
     * a will for a filter or of more than 65535 bytes) make the attempt fail, with IdRejected,
     * BadUsernameOrPassword or ProtocolViolation.
     */
    Q_INVOKABLE void connectToHost();

    /**
     * Encryption is not supported, and nothing is sent without it where it is asked for: a warning
     * is logged, and errorChanged(TransportInvalid) is emitted inside the call.
     */
    void connectToHostEncrypted(const QString &sslPeerName = QString());
    /** The same, whatever the configuration. */
    void connectToHostEncrypted(const QSslConfiguration &conf);

    /**
     * Leaves the broker: all that was published goes out first, then the state changes, inside the
     * call. Messages that have not been delivered yet are discarded.  Blocks while the broker takes
     * its time: for up to 30 seconds as long as it reads what goes out, for two when it does not,
     * and then for a few more while it answers.
     *
     * While Connecting the attempt is given up, with TransportInvalid.  Does nothing while
     * Disconnected.
     */
    Q_INVOKABLE void disconnectFromHost();

Q_SIGNALS:
    /** The broker has accepted; after stateChanged(Connected). */
    void connected();
    /**
     * A connection has ended, or an attempt to make one has failed; after
     * stateChanged(Disconnected).  Not when the client is deleted.
     */
    void disconnected();
    /**
     * A message came; exactly once for each, whatever number of subscriptions it matches, and also
     * if there is none.  One of more than 16 MB is dropped, with a warning.
     */
    void messageReceived(const QByteArray &message, const QMqttTopicName &topic = QMqttTopicName());
    /**
     * The broker has confirmed the message that publish() gave this id.  Never for a message at
     * quality of service 0, nor for one that was lost with its connection.
     */
    void messageSent(int id);
    /**
     * The broker has confirmed that message: Acknowledged at quality of service 1, Completed at 2,
     * and no other status.  Emitted before messageSent().
     */
    void messageStatusChanged(
        qint32 id, QMqtt::MessageStatus s, const QMqttMessageStatusProperties &properties);
    /** The broker has answered a ping, requested or not. */
    void pingResponseReceived();
    /** The broker remembers this client's last session; emitted before connected(). */
    void brokerSessionRestored();

    // For each property, with its new value: emitted when it has changed, not when it was set to
    // what it was.
    void hostnameChanged(QString hostname);
    void portChanged(quint16 port);
    void clientIdChanged(QString clientId);
    void keepAliveChanged(quint16 keepAlive);
    void protocolVersionChanged(ProtocolVersion protocolVersion);
    /** Emitted for each change, and before the signal that tells of the same event. */
    void stateChanged(ClientState state);
    /**
     * An error, after the signals of the state that it led to.  Not emitted when connecting starts
     * and error() goes back to NoError.
     */
    void errorChanged(ClientError error);
    void usernameChanged(QString username);
    void passwordChanged(QString password);
    void cleanSessionChanged(bool cleanSession);
    void willTopicChanged(QString willTopic);
    void willMessageChanged(QByteArray willMessage);
    void willQoSChanged(quint8 willQoS);
    void willRetainChanged(bool willRetain);
    void autoKeepAliveChanged(bool autoKeepAlive);

public Q_SLOTS:
    void setHostname(const QString &hostname);
    void setPort(quint16 port);
    void setClientId(const QString &clientId);
    void setKeepAlive(quint16 keepAlive);
    void setProtocolVersion(ProtocolVersion protocolVersion);
    /**
     * For tests of an application: emits what a real change would emit, and changes no connection.
     */
    void setState(ClientState state);
    /** For tests of an application: sets error() and emits errorChanged(). */
    void setError(ClientError error);
    void setUsername(const QString &username);
    void setPassword(const QString &password);
    void setCleanSession(bool cleanSession);
    void setWillTopic(const QString &willTopic);
    void setWillMessage(const QByteArray &willMessage);
    void setWillQoS(quint8 willQoS);
    void setWillRetain(bool willRetain);
    void setAutoKeepAlive(bool autoKeepAlive);

private:
    Q_DISABLE_COPY(QMqttClient)
    void connectToHost(bool encrypted, const QString &sslPeerName);

    std::unique_ptr<QMqttClientPrivate> d;
};

Q_DECLARE_METATYPE(QMqttClient::TransportType)
Q_DECLARE_METATYPE(QMqttClient::ClientState)
Q_DECLARE_METATYPE(QMqttClient::ClientError)
