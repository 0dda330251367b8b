// SPDX-License-Identifier: GPL-3.0-or-later
#include "qmqttconnection_p.h"

#include <QtCore/QSocketNotifier>
#include <QtNetwork/QHostInfo>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <mosquitto.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcMqttConnection, "qt.mqtt.connection")

namespace {
/** The library refuses shorter ones, except 0. */
constexpr int ShortestKeepAlive = 5; // seconds
/** Later than the exact time, because the library's clock and the kernel's count in steps. */
constexpr int KeepAliveMarginMs = 100;
/** The first byte of the only packet that may answer a request to connect. */
constexpr quint8 ConnectAnswer = 0x20;
/** Head of the answer to a ping, and the whole request. */
constexpr quint8 PingAnswer = 0xd0;
constexpr quint8 PingRequest[] = { 0xc0, 0 };
/** In the head of a message. */
constexpr quint8 RepeatedFlag = 0x08;
/** The only flag of an acceptance; the others are reserved. */
constexpr int SessionRestoredFlag = 1;
constexpr quint8 TypeBits = 0xf0;
constexpr quint8 Message = 0x30;
/** The library would take as much memory as a packet says that it needs: up to 256 MB. */
constexpr int LargestPacket = 16 << 20;
/** In bytes; the head's first byte is followed by up to four that tell the length. */
constexpr int LongestHead = 5;

// Patience with a broker that does not move while we leave, and with one that moves all the time.
constexpr int WritePatienceMs = 2000;
constexpr int WriteLimitMs = 30000; // as long as the Qt module
constexpr int AnswerPatienceMs = 200;
constexpr int AnswerLimitMs = 1500; // with the next one less than a service manager waits
constexpr int FarewellLimitMs = 3000;

QMqttClient::ClientError errorFromCode(int code)
{
    switch (code) {
    case MOSQ_ERR_KEEPALIVE:
        return QMqttClient::ServerUnavailable;
    case MOSQ_ERR_PROTOCOL:
    case MOSQ_ERR_MALFORMED_PACKET:
    case MOSQ_ERR_MALFORMED_UTF8:
        return QMqttClient::ProtocolViolation;
    default:
        return QMqttClient::TransportInvalid;
    }
}

QMqttConnection *connection(void *self)
{
    return static_cast<QMqttConnection *>(self);
}

/**
 * The events that are possible on the socket, waited for until one is or the time is up; 0 then.  A
 * signal ends the system's wait, but not this one.
 */
short waitFor(int socket, short events, const QDeadlineTimer &limit)
{
    if (limit.hasExpired()) // also for a socket on which something is possible all the time
        return 0;
    pollfd waiting { socket, events, 0 };
    int count = 0;
    do {
        count = poll(&waiting, 1, int(limit.remainingTime()));
    } while (count < 0 && errno == EINTR);
    return count > 0 ? waiting.revents : 0;
}

/**
 * The length of the packet that begins so, its head included; empty while the head is incomplete. A
 * head that is none counts as a whole packet, for the library to find fault with.
 */
std::optional<int> packetLength(const quint8 *head, int available)
{
    int length = 0;
    for (int i = 1; i < available; ++i) {
        length |= (head[i] & 0x7f) << (7 * (i - 1));
        if (!(head[i] & 0x80))
            return i + 1 + length;
    }
    return available < LongestHead ? std::nullopt : std::optional(LongestHead);
}

/** That time from now, but not beyond the limit. */
QDeadlineTimer within(int ms, const QDeadlineTimer &limit)
{
    return std::min(QDeadlineTimer(ms), limit);
}

} // namespace

QMqttConnection::QMqttConnection(const QMqttSettings &settings)
    : m_settings(settings)
    , m_limit(pings() ? keepAliveSeconds() * 1000 : -1) // -1: none
{
    // Precise: a coarse timer may fire early, and then the ping would miss its turn.
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &QMqttConnection::timeOut);
}

QMqttConnection::~QMqttConnection()
{
    m_phase = Over;
    if (m_lookup != -1)
        QHostInfo::abortHostLookup(m_lookup);
    unwatchSocket(); // before the handle closes the socket
}

void QMqttConnection::open()
{
    // The library would look names up while everything waits, and would use the first address only.
    if (QHostAddress address; address.setAddress(m_settings.hostname)) {
        open({ address });
        return;
    }
    startTimer(1);
    // By the slot's name: a lookup that is aborted never frees a functor that it was given.
    m_lookup = QHostInfo::lookupHost(m_settings.hostname, this, SLOT(useLookup(QHostInfo)));
}

void QMqttConnection::useLookup(const QHostInfo &info)
{
    m_lookup = -1;
    open(info.addresses());
}

void QMqttConnection::open(const QList<QHostAddress> &addresses)
{
    m_addresses = addresses;
    tryNextAddress();
    announce();
}

QMqttClient::ClientError QMqttConnection::createHandle()
{
    const QMqttClient::ClientError error = m_handle.create(m_settings, this);
    if (error != QMqttClient::NoError)
        return error;
    mosquitto_connect_with_flags_callback_set(m_handle, &QMqttConnection::onConnect);
    mosquitto_disconnect_callback_set(m_handle, &QMqttConnection::onDisconnect);
    mosquitto_message_callback_set(m_handle, &QMqttConnection::onMessage);
    mosquitto_publish_callback_set(m_handle, &QMqttConnection::onPublish);
    mosquitto_subscribe_callback_set(m_handle, &QMqttConnection::onSubscribe);
    mosquitto_unsubscribe_callback_set(m_handle, &QMqttConnection::onUnsubscribe);
    mosquitto_log_callback_set(m_handle, &QMqttConnection::onLog);
    return QMqttClient::NoError;
}

void QMqttConnection::tryNextAddress()
{
    while (!m_addresses.isEmpty()) {
        startTimer(m_addresses.size());
        const QByteArray address = m_addresses.takeFirst().toString().toLatin1();
        // A new handle: the one before may hold the beginning of an answer.
        const QMqttClient::ClientError error = createHandle();
        if (error != QMqttClient::NoError) {
            end(error);
            return;
        }
        const int code = mosquitto_connect_async(
            m_handle, address.constData(), m_settings.port, keepAliveSeconds());
        m_lossCode.reset();
        m_betweenPackets = true;
        m_wakingBytes = 1;
        if (code == MOSQ_ERR_SUCCESS) {
            QMqttHandle::keepFromChildren(mosquitto_socket(m_handle));
            watchSocket();
            return;
        }
    }
    end(QMqttClient::TransportInvalid);
}

/** Starts one of several steps, which have the rest of the attempt's time in equal parts. */
void QMqttConnection::startTimer(int steps)
{
    if (!m_limit.isForever())
        m_timer.start(int(m_limit.remainingTime()) / steps + KeepAliveMarginMs);
}

void QMqttConnection::timeOut()
{
    if (m_phase == Open) {
        keepAlive();
    } else if (m_lookup != -1) {
        QHostInfo::abortHostLookup(m_lookup);
        m_lookup = -1;
        end(QMqttClient::TransportInvalid);
        announce();
    } else {
        finishCall(MOSQ_ERR_KEEPALIVE);
    }
}

void QMqttConnection::watchSocket()
{
    const int socket = mosquitto_socket(m_handle);
    m_readNotifier = new QSocketNotifier(socket, QSocketNotifier::Read, this);
    connect(m_readNotifier, &QSocketNotifier::activated, this, &QMqttConnection::read);
    m_writeNotifier = new QSocketNotifier(socket, QSocketNotifier::Write, this);
    connect(m_writeNotifier, &QSocketNotifier::activated, this, &QMqttConnection::write);
    m_writeNotifier->setEnabled(mosquitto_want_write(m_handle));
}

void QMqttConnection::unwatchSocket()
{
    for (QSocketNotifier **notifier : { &m_readNotifier, &m_writeNotifier }) {
        if (!*notifier)
            continue;
        (*notifier)->setEnabled(false); // now: the number of a closed socket may be used again
        (*notifier)->deleteLater();     // not now: this may be running in its slot
        *notifier = nullptr;
    }
}

void QMqttConnection::read()
{
    const Phase before = m_phase;
    int code = MOSQ_ERR_SUCCESS;
    for (int i = 0; i < PacketsPerTurn; ++i) {
        code = readPacket();
        if (code != MOSQ_ERR_SUCCESS || !m_packetRead || m_phase == Over)
            break;
    }

    // A broker with Nagle's algorithm holds a small packet back until the one before is
    // acknowledged, which the kernel would delay by 40 ms.  The option wears off, so it is set
    // again and again.
    if (const int socket = mosquitto_socket(m_handle); socket >= 0) {
        const int on = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_QUICKACK, &on, sizeof on);
    }
    if (before == Opening && m_phase == Open)
        scheduleKeepAlive();
    finishCall(code);
}

/**
 * Reads one packet, or what there is of it; m_packetRead tells.  The library's own number of
 * packets a call is as large as the number of messages that are unconfirmed; onLog() has it stop
 * after one.
 */
int QMqttConnection::readPacket()
{
    m_packetRead = false;
    if (m_discarding > 0)
        return discard();
    if (m_betweenPackets) {
        quint8 head[LongestHead] = {};
        const int socket = mosquitto_socket(m_handle);
        const ssize_t count = recv(socket, head, sizeof head, MSG_PEEK | MSG_DONTWAIT);
        if (count < 0) // looking takes the error off the socket
            return errno == EAGAIN || errno == EINTR ? MOSQ_ERR_SUCCESS : MOSQ_ERR_ERRNO;
        m_head = head[0];
        // The library would take foreign bytes for the head of a long packet and wait for its rest.
        if (count > 0 && m_phase == Opening && m_head != ConnectAnswer)
            return MOSQ_ERR_PROTOCOL;
        const std::optional<int> length = packetLength(head, int(count));
        // Readable with less than was asked for, the socket has no room for more: one byte of a
        // segment keeps the room of all of it. The library then gets the packet unseen.
        if (count >= m_wakingBytes && !length && !waitFor(socket, POLLRDHUP, QDeadlineTimer(1))) {
            wakeForBytes(int(count) + 1);
            return MOSQ_ERR_SUCCESS;
        }
        wakeForBytes(1);
        if (length > LargestPacket) {
            if ((m_head & TypeBits) != Message)
                return MOSQ_ERR_PROTOCOL;
            qCWarning(lcMqttConnection).nospace()
                << "Dropping a message of " << *length << " bytes, more than any may have.";
            m_discarding = *length;
            return discard();
        }
    }
    m_reading = true;
    const int code = mosquitto_loop_read(m_handle, 1);
    m_reading = false;
    m_betweenPackets = m_packetRead;
    if (m_packetRead && code == MOSQ_ERR_SUCCESS && m_head == PingAnswer)
        post(PingAnswered {});
    return code;
}

/** Reads a part of a packet that is not wanted, unseen by the library. */
int QMqttConnection::discard()
{
    char discarded[16384];
    const size_t wanted = std::min(sizeof discarded, size_t(m_discarding));
    const ssize_t count = recv(mosquitto_socket(m_handle), discarded, wanted, MSG_DONTWAIT);
    if (count < 0)
        return errno == EAGAIN || errno == EINTR ? MOSQ_ERR_SUCCESS : MOSQ_ERR_ERRNO;
    m_discarding -= int(count);
    m_packetRead = true;
    return count > 0 ? MOSQ_ERR_SUCCESS : MOSQ_ERR_CONN_LOST;
}

/** The socket counts as readable once it holds so many bytes, or the broker has closed its side. */
void QMqttConnection::wakeForBytes(int count)
{
    if (m_wakingBytes == count)
        return;
    m_wakingBytes = count;
    setsockopt(mosquitto_socket(m_handle), SOL_SOCKET, SO_RCVLOWAT, &count, sizeof count);
}

void QMqttConnection::write()
{
    finishCall(mosquitto_loop_write(m_handle, 1));
}

/** The library pings by its own clock only. */
bool QMqttConnection::requestPing()
{
    if (m_phase != Open)
        return false;
    m_pingWanted = true;
    finishCall(MOSQ_ERR_SUCCESS);
    return true;
}

/**
 * To be called between packets of the library's.  The kernel takes two bytes whole or not at all.
 */
void QMqttConnection::ping()
{
    const ssize_t count = send(
        mosquitto_socket(m_handle), PingRequest, sizeof PingRequest, MSG_DONTWAIT | MSG_NOSIGNAL);
    m_pingWanted = count < 0 && (errno == EAGAIN || errno == EINTR);
}

void QMqttConnection::keepAlive()
{
    finishCall(mosquitto_loop_misc(m_handle));
    if (m_phase != Over)
        scheduleKeepAlive();
}

/**
 * The library pings when it is asked while nothing has been sent for the keep-alive time (or
 * nothing received).  It is asked once per that time, at the moment when the ping may be due; the
 * kernel knows when something was last sent, so that no timer has to be set again with every
 * message.
 */
void QMqttConnection::scheduleKeepAlive()
{
    if (!pings())
        return;
    const int intervalMs = keepAliveSeconds() * 1000;
    tcp_info info = {};
    socklen_t size = sizeof info;
    getsockopt(mosquitto_socket(m_handle), IPPROTO_TCP, TCP_INFO, &info, &size);
    const int silentMs = int(std::min(info.tcpi_last_data_sent, quint32(intervalMs - 1000)));
    m_timer.start(intervalMs + KeepAliveMarginMs - silentMs);
}

bool QMqttConnection::pings() const
{
    return m_settings.autoKeepAlive && m_settings.keepAlive > 0;
}

int QMqttConnection::keepAliveSeconds() const
{
    return m_settings.keepAlive == 0 ? 0 : std::max<int>(m_settings.keepAlive, ShortestKeepAlive);
}

int QMqttConnection::publish(
    const QString &topic, const QByteArray &payload, quint8 qos, bool retain)
{
    if (m_phase != Open)
        return -1;
    int id = 0;
    const int code = mosquitto_publish(m_handle, &id, topic.toUtf8().constData(), payload.size(),
        payload.constData(), qos, retain);
    if (code == MOSQ_ERR_SUCCESS && qos > 0)
        m_unconfirmed.insert(id, qos);
    finishCall(MOSQ_ERR_SUCCESS); // a loss is noticed when reading
    if (code != MOSQ_ERR_SUCCESS)
        return -1;
    return qos > 0 ? id : 0;
}

int QMqttConnection::subscribe(const QString &filter, quint8 qos)
{
    if (m_phase != Open)
        return -1;
    int id = 0;
    const int code = mosquitto_subscribe(m_handle, &id, filter.toUtf8().constData(), qos);
    finishCall(MOSQ_ERR_SUCCESS);
    return code == MOSQ_ERR_SUCCESS ? id : -1;
}

int QMqttConnection::unsubscribe(const QString &filter)
{
    if (m_phase != Open)
        return -1;
    int id = 0;
    const int code = mosquitto_unsubscribe(m_handle, &id, filter.toUtf8().constData());
    finishCall(MOSQ_ERR_SUCCESS);
    return code == MOSQ_ERR_SUCCESS ? id : -1;
}

/** To be called after each call of the library, outside its callbacks. */
void QMqttConnection::finishCall(int code)
{
    if (m_phase != Over) {
        if (!m_lossCode && code > MOSQ_ERR_SUCCESS)
            m_lossCode = code; // lost without a callback
        if (m_lossCode) {
            unwatchSocket();
            const int loss = *m_lossCode;
            if (m_phase == Opening && !m_addresses.isEmpty())
                tryNextAddress();
            else
                end(errorFromCode(loss));
        } else {
            if (m_pingWanted && !mosquitto_want_write(m_handle))
                ping();
            m_writeNotifier->setEnabled(m_pingWanted || mosquitto_want_write(m_handle));
        }
    }
    announce();
}

void QMqttConnection::close()
{
    if (m_phase != Open)
        return;
    m_phase = Over;
    m_events.clear();
    m_timer.stop();
    unwatchSocket();

    // First all that waits to be written, and the answers to it: once it has said farewell, the
    // library takes whatever still comes in for a violation, and closes.
    const QDeadlineTimer writeLimit(WriteLimitMs);
    QDeadlineTimer patience = within(WritePatienceMs, writeLimit);
    while (mosquitto_want_write(m_handle)) {
        const Exchanged moved = exchange(patience);
        if (moved == Nothing)
            return;
        if (moved == Output) // a broker may well send, and take nothing
            patience = within(WritePatienceMs, writeLimit);
    }
    const QDeadlineTimer answerLimit(AnswerLimitMs);
    while (!m_unconfirmed.isEmpty() && exchange(within(AnswerPatienceMs, answerLimit)) != Nothing) {
    }
    if (mosquitto_socket(m_handle) >= 0)
        sayFarewell();
}

/**
 * Closing a socket that still has something to read makes the kernel reset the connection, and the
 * broker then loses what it has not read yet.  So a second descriptor keeps the socket open until
 * the broker has closed its side, and what comes in is thrown away there, unseen by the library.
 */
void QMqttConnection::sayFarewell()
{
    mosquitto *const handle = m_handle;
    const int socket = fcntl(mosquitto_socket(handle), F_DUPFD_CLOEXEC, 0);
    if (socket < 0)
        return;
    const QDeadlineTimer limit(FarewellLimitMs);
    mosquitto_disconnect(handle);
    for (bool ended = false; !ended;) {
        const bool written = mosquitto_socket(handle) < 0; // the library closes its descriptor then
        if (written)
            shutdown(socket, SHUT_WR);
        const short possible = written ? waitFor(socket, POLLIN, within(AnswerPatienceMs, limit))
                                       : waitFor(socket, POLLIN | POLLOUT, limit);
        char discarded[4096];
        ended = !possible
            || ((possible & ~POLLOUT) && ::read(socket, discarded, sizeof discarded) <= 0);
        if (possible & POLLOUT)
            mosquitto_loop_write(handle, 1);
    }
    ::close(socket);
}

/**
 * Waits until something can be written or read, and does one of it; writing first, so that the
 * queue is seen to be empty before reading adds an acknowledgement to it.  Nothing when nothing
 * moved, the time is up or all is over.
 */
QMqttConnection::Exchanged QMqttConnection::exchange(const QDeadlineTimer &limit)
{
    const short wanted = mosquitto_want_write(m_handle) ? POLLIN | POLLOUT : POLLIN;
    const short possible = waitFor(mosquitto_socket(m_handle), wanted, limit);
    if (!possible)
        return Nothing;
    if (possible & POLLOUT)
        return mosquitto_loop_write(m_handle, 1) == MOSQ_ERR_SUCCESS ? Output : Nothing;
    return readPacket() == MOSQ_ERR_SUCCESS ? Input : Nothing;
}

QMqttConnection::Event QMqttConnection::takeEvent()
{
    Event event = std::move(m_events.front());
    m_events.pop_front();
    if (m_events.empty())
        m_announced = false;
    return event;
}

void QMqttConnection::post(Event event)
{
    if (m_phase != Over)
        m_events.push_back(std::move(event));
}

void QMqttConnection::announce()
{
    if (m_announced || m_events.empty())
        return;
    m_announced = true;
    emit eventsAvailable();
}

void QMqttConnection::end(QMqttClient::ClientError error)
{
    post(Ended { error });
    m_phase = Over;
    m_timer.stop();
    unwatchSocket();
}

void QMqttConnection::onConnect(mosquitto *, void *self, int code, int flags)
{
    QMqttConnection *const q = connection(self);
    if (q->m_phase == Open || (flags & ~SessionRestoredFlag)) {
        q->end(QMqttClient::ProtocolViolation);
    } else if (code != MOSQ_ERR_SUCCESS) {
        q->end(QMqttClient::ClientError(code));
    } else if (q->m_phase == Opening) {
        q->post(Accepted { (flags & SessionRestoredFlag) != 0 });
        q->m_phase = Open;
    }
}

void QMqttConnection::onDisconnect(mosquitto *, void *self, int code)
{
    QMqttConnection *const q = connection(self);
    if (q->m_phase == Over)
        return;
    q->unwatchSocket(); // the library has closed the socket
    q->m_lossCode = code;
}

void QMqttConnection::onMessage(mosquitto *, void *self, const mosquitto_message *message)
{
    QMqttMessage copy;
    copy.m_topic = QMqttTopicName(QString::fromUtf8(message->topic));
    copy.m_payload = message->payloadlen > 0
        ? QByteArray(static_cast<const char *>(message->payload), message->payloadlen)
        : QByteArray("");
    copy.m_id = quint16(message->qos > 0 ? message->mid : 0);
    copy.m_qos = quint8(message->qos);
    copy.m_retain = message->retain;
    copy.m_duplicate = connection(self)->m_head & RepeatedFlag; // the library does not tell
    connection(self)->post(MessageArrived { std::move(copy) });
}

void QMqttConnection::onPublish(mosquitto *, void *self, int id)
{
    // Messages at quality of service 0 get here too, with an id that nobody was told.
    if (const quint8 qos = connection(self)->m_unconfirmed.take(id))
        connection(self)->post(PublishConfirmed { id, qos });
}

void QMqttConnection::onSubscribe(mosquitto *, void *self, int id, int count, const int *grantedQos)
{
    if (count == 1)
        connection(self)->post(SubscribeAnswered { id, grantedQos[0] });
}

void QMqttConnection::onUnsubscribe(mosquitto *, void *self, int id)
{
    connection(self)->post(UnsubscribeAnswered { id });
}

/**
 * The library logs each packet that it has read, before it handles it; what it says is not looked
 * at. After a packet it goes on to the next one unless errno says that there is none.
 */
void QMqttConnection::onLog(mosquitto *, void *self, int, const char *)
{
    QMqttConnection *const q = connection(self);
    if (!q->m_reading)
        return;
    q->m_packetRead = true;
    errno = EAGAIN;
}
