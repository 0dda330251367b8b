// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqtthandle_p.h"
#include "qmqttsettings_p.h"

#include <QtMqtt/qmqttclient.h>

#include <QtCore/QByteArray>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QHash>
#include <QtCore/QList>
#include <QtCore/QLoggingCategory>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtNetwork/QHostAddress>

#include <deque>
#include <optional>
#include <variant>

class QHostInfo;
class QSocketNotifier;
struct mosquitto;
struct mosquitto_message;

Q_DECLARE_LOGGING_CATEGORY(lcMqttConnection)

/**
 * One attempt to connect, and the connection that comes of it, over one handle of the library.
 *
 * Whatever the library reports is appended to a queue of events; its owner takes them from there
 * when the event loop calls it (eventsAvailable() must be a queued connection).  So the
 * application's code never runs below a call of the library, which would dead-lock or touch freed
 * memory, nor below a function of this class, which may therefore be deleted by whatever the
 * application does.
 */
class QMqttConnection : public QObject {
    Q_OBJECT
public:
    /**
     * How many packets are read, and how many events are to be taken, before the event loop gets
     * its turn again, so that a flood does not freeze the display.
     */
    static constexpr int PacketsPerTurn = 512;

    struct Accepted {
        bool sessionRestored;
    };
    struct MessageArrived {
        QMqttMessage message;
    };
    struct PublishConfirmed {
        int id;
        quint8 qos;
    };
    struct SubscribeAnswered {
        int id;
        int grantedQos; // above 2: refused
    };
    struct UnsubscribeAnswered {
        int id;
    };
    struct PingAnswered { };
    /** The attempt failed or the connection is lost.  Always the last event. */
    struct Ended {
        QMqttClient::ClientError error;
    };
    using Event = std::variant<Accepted, MessageArrived, PublishConfirmed, SubscribeAnswered,
        UnsubscribeAnswered, PingAnswered, Ended>;

    explicit QMqttConnection(const QMqttSettings &settings);
    /** Closes the network connection, if need be without a word to the broker. */
    ~QMqttConnection() override;

    /** Starts the attempt.  Its outcome, even one known at once, comes as an event. */
    void open();
    /** The same with addresses that are known already, tried in this order. */
    void open(const QList<QHostAddress> &addresses);

    /**
     * Leaves the broker so that all that was published arrives there; blocks meanwhile, but not
     * without a limit, so that a broker that does nothing for a while may get less. Produces no
     * events and drops the queued ones.  Nothing but deletion may follow.
     */
    void close();

    /** The message's id; 0 at quality of service 0; -1 if it was not taken. */
    int publish(const QString &topic, const QByteArray &payload, quint8 qos, bool retain);
    /** The id under which the answer will come; -1 if the request was not taken. */
    int subscribe(const QString &filter, quint8 qos);
    /** The id under which the answer will come; -1 if the request was not taken. */
    int unsubscribe(const QString &filter);

    /** Sends a ping as soon as what is being sent is written; false if there is no connection. */
    bool requestPing();

    bool hasEvents() const { return !m_events.empty(); }
    /** The oldest event, taken off the queue, which must not be empty. */
    Event takeEvent();

Q_SIGNALS:
    /** Emitted for the first event after the queue was empty. */
    void eventsAvailable();

private Q_SLOTS:
    void useLookup(const QHostInfo &info);

private:
    enum Phase { Opening, Open, Over };
    enum Exchanged { Nothing, Input, Output };

    static void onConnect(mosquitto *handle, void *self, int code, int flags);
    static void onDisconnect(mosquitto *handle, void *self, int code);
    static void onMessage(mosquitto *handle, void *self, const mosquitto_message *message);
    static void onPublish(mosquitto *handle, void *self, int id);
    static void onSubscribe(
        mosquitto *handle, void *self, int id, int count, const int *grantedQos);
    static void onUnsubscribe(mosquitto *handle, void *self, int id);
    static void onLog(mosquitto *handle, void *self, int level, const char *text);

    QMqttClient::ClientError createHandle();
    void tryNextAddress();
    void startTimer(int steps);
    void timeOut();
    void watchSocket();
    void unwatchSocket();
    void read();
    int readPacket();
    int discard();
    void wakeForBytes(int count);
    void write();
    void ping();
    void keepAlive();
    void scheduleKeepAlive();
    void sayFarewell();
    Exchanged exchange(const QDeadlineTimer &limit);
    void finishCall(int code);
    void post(Event event);
    void announce();
    void end(QMqttClient::ClientError error);
    bool pings() const;
    int keepAliveSeconds() const;

    const QMqttSettings m_settings;
    Phase m_phase = Opening;
    int m_lookup = -1;               // id of the running name lookup
    QList<QHostAddress> m_addresses; // those not tried yet
    QMqttHandle m_handle;
    QSocketNotifier *m_readNotifier = nullptr;
    QSocketNotifier *m_writeNotifier = nullptr;
    const QDeadlineTimer m_limit;  // of the attempt
    QTimer m_timer;                // while Opening for what takes too long, then for the keep-alive
    std::optional<int> m_lossCode; // set between the loss and the end of the library's call
    bool m_reading = false;        // while the library reads
    bool m_packetRead = false;     // by its last call for reading, to the end
    bool m_betweenPackets = true;  // otherwise a part of one has been read
    quint8 m_head = 0;             // first byte of the packet that is read
    int m_discarding = 0;          // bytes left of a packet that is not wanted
    int m_wakingBytes = 1;         // how many make the socket readable
    QHash<int, quint8> m_unconfirmed; // ids and qualities of messages the broker has not confirmed
    bool m_pingWanted = false;
    std::deque<Event> m_events;
    bool m_announced = false;
};
