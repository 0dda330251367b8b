// SPDX-License-Identifier: GPL-3.0-or-later
#include "qmqttclient_p.h"

#include <QtCore/QDeadlineTimer>
#include <QtCore/QRandomGenerator>

#include <algorithm>

namespace {
constexpr int ClientIdLength = 23; // the longest id that every broker must accept
constexpr quint8 HighestQos = 2;
/** How long events are handed on before the event loop gets its turn: less than a frame takes. */
constexpr int TurnMs = 10;

QString randomClientId()
{
    QString id;
    for (int i = 0; i < ClientIdLength; ++i)
        id += QString::number(QRandomGenerator::system()->bounded(16), 16);
    return id;
}
} // namespace

QMqttClientPrivate::QMqttClientPrivate(QMqttClient *client)
    : q(client)
{
    settings.clientId = randomClientId();
}

QMqttClientPrivate::~QMqttClientPrivate()
{
    if (m_connection)
        m_connection->close();
}

void QMqttClientPrivate::connectToHost(bool encrypted)
{
    if (m_state != QMqttClient::Disconnected)
        return;
    m_error = QMqttClient::NoError; // silently, as the module does
    if (encrypted)
        qCWarning(lcMqttConnection) << "Encrypted connections are not supported.";
    if (encrypted || settings.hostname.isEmpty() || settings.port == 0) {
        setError(QMqttClient::TransportInvalid);
        return;
    }

    m_connection = std::make_unique<QMqttConnection>(settings);
    const QPointer<QMqttConnection> created(m_connection.get());
    // Queued, so that slots of the application never run below the connection's functions.
    QObject::connect(
        m_connection.get(), &QMqttConnection::eventsAvailable, q, [this] { deliver(); },
        Qt::QueuedConnection);
    enter(QMqttClient::Connecting);
    if (created) // a slot may have given up at once
        created->open();
}

void QMqttClientPrivate::disconnectFromHost()
{
    if (m_state == QMqttClient::Disconnected)
        return;
    const bool open = m_state == QMqttClient::Connected;
    if (m_connection)
        m_connection->close();
    finish(open ? QMqttClient::NoError : QMqttClient::TransportInvalid);
}

QMqttSubscription *QMqttClientPrivate::subscribe(const QMqttTopicFilter &filter, quint8 qos)
{
    if (m_state != QMqttClient::Connected || !m_connection)
        return nullptr;
    if (!filter.isValid()) {
        qCWarning(lcMqttConnection) << "Invalid subscription topic filter.";
        return nullptr;
    }
    if (qos > HighestQos) {
        qCWarning(lcMqttConnection) << "Invalid subscription QoS.";
        return nullptr;
    }

    for (const Subscription &known : m_subscriptions) {
        if (known && known->topic() == filter)
            return known;
    }
    const int id = m_connection->subscribe(filter.filter(), qos);
    if (id < 0)
        return nullptr;
    forget(nullptr);
    m_subscriptions.emplace_back(new QMqttSubscription(filter, qos, q));
    m_unanswered.insert(id, m_subscriptions.back());
    return m_subscriptions.back();
}

void QMqttClientPrivate::unsubscribe(const QMqttTopicFilter &filter)
{
    const auto found = std::find_if(m_subscriptions.begin(), m_subscriptions.end(),
        [&](const Subscription &known) { return known && known->topic() == filter; });
    if (found == m_subscriptions.end() || !m_connection)
        return;
    const int id = m_connection->unsubscribe(filter.filter());
    if (id < 0)
        return;
    const Subscription subscription = *found;
    m_subscriptions.erase(found);
    m_unanswered.insert(id, subscription);
    subscription->setState(QMqttSubscription::UnsubscriptionPending);
}

/** Takes a subscription off the list of live ones; null stands for those that are deleted. */
void QMqttClientPrivate::forget(const QMqttSubscription *subscription)
{
    m_subscriptions.erase(std::remove(m_subscriptions.begin(), m_subscriptions.end(), subscription),
        m_subscriptions.end());
}

qint32 QMqttClientPrivate::publish(
    const QMqttTopicName &topic, const QByteArray &message, quint8 qos, bool retain)
{
    if (m_state != QMqttClient::Connected || !m_connection || qos > HighestQos || !topic.isValid())
        return -1;
    return m_connection->publish(topic.name(), message, qos, retain);
}

bool QMqttClientPrivate::requestPing()
{
    return m_state == QMqttClient::Connected && m_connection && !settings.autoKeepAlive
        && m_connection->requestPing();
}

void QMqttClientPrivate::enter(QMqttClient::ClientState state, QMqttClient::ClientError error)
{
    const QPointer<QMqttClient> alive(q);
    const quint64 transition = ++m_transitions;
    const auto superseded = [&] { return !alive || m_transitions != transition; };

    m_state = state;
    emit q->stateChanged(state);
    if (superseded())
        return;
    if (state == QMqttClient::Connected)
        emit q->connected();
    else if (state == QMqttClient::Disconnected)
        emit q->disconnected();
    if (superseded())
        return;
    if (error != QMqttClient::NoError)
        setError(error);
}

void QMqttClientPrivate::setError(QMqttClient::ClientError error)
{
    if (m_error == error)
        return;
    m_error = error;
    emit q->errorChanged(error);
}

void QMqttClientPrivate::scheduleDelivery()
{
    QMetaObject::invokeMethod(
        q, [this] { deliver(); }, Qt::QueuedConnection);
}

void QMqttClientPrivate::deliver()
{
    if (m_delivering) // a slot runs an event loop; it is served when the slot has returned
        return;
    m_delivering = true;

    // Only this connection's events: a slot that connects again and again, to a broker that refuses
    // at once, would otherwise never let the event loop have its turn.
    const QPointer<QMqttClient> alive(q);
    const QPointer<QMqttConnection> source(m_connection.get());
    const QDeadlineTimer end(TurnMs);
    for (int i = 0; i < QMqttConnection::PacketsPerTurn && !end.hasExpired(); ++i) {
        if (!source || source != m_connection.get() || !source->hasEvents())
            break;
        const QMqttConnection::Event event = source->takeEvent();
        std::visit([this](const auto &e) { handle(e); }, event);
        if (!alive)
            return;
    }

    m_delivering = false;
    if (m_connection && m_connection->hasEvents())
        scheduleDelivery();
}

void QMqttClientPrivate::handle(const QMqttConnection::Accepted &event)
{
    const QPointer<QMqttClient> alive(q);
    const quint64 transition = m_transitions;
    if (event.sessionRestored)
        emit q->brokerSessionRestored();
    if (alive && m_transitions == transition)
        enter(QMqttClient::Connected);
}

void QMqttClientPrivate::handle(const QMqttConnection::MessageArrived &event)
{
    const QPointer<QMqttClient> alive(q);
    // Chosen before the slots run, which may subscribe, unsubscribe or delete.
    std::vector<Subscription> receivers;
    std::copy_if(m_subscriptions.begin(), m_subscriptions.end(), std::back_inserter(receivers),
        [&](const Subscription &known) { return known && known->wants(event.message); });

    const quint64 transition = m_transitions;
    emit q->messageReceived(event.message.payload(), event.message.topic());
    for (const Subscription &receiver : receivers) {
        if (!alive || m_transitions != transition)
            return;
        if (receiver)
            emit receiver->messageReceived(event.message);
    }
}

void QMqttClientPrivate::handle(const QMqttConnection::PublishConfirmed &event)
{
    const QPointer<QMqttClient> alive(q);
    const quint64 transition = m_transitions;
    emit q->messageStatusChanged(event.id,
        event.qos == 1 ? QMqtt::MessageStatus::Acknowledged : QMqtt::MessageStatus::Completed, {});
    if (alive && m_transitions == transition)
        emit q->messageSent(event.id);
}

void QMqttClientPrivate::handle(const QMqttConnection::SubscribeAnswered &event)
{
    const Subscription subscription = m_unanswered.take(event.id);
    // Unless it has been ended in the meantime; then the other answer counts.
    if (!subscription || subscription->state() != QMqttSubscription::SubscriptionPending)
        return;
    if (event.grantedQos > HighestQos) {
        qCWarning(lcMqttConnection)
            << "The broker refused the subscription to" << subscription->topic().filter();
        forget(subscription);
        subscription->setState(QMqttSubscription::Error);
        return;
    }
    subscription->setQos(quint8(event.grantedQos));
    if (subscription && subscription->state() == QMqttSubscription::SubscriptionPending)
        subscription->setState(QMqttSubscription::Subscribed);
}

void QMqttClientPrivate::handle(const QMqttConnection::UnsubscribeAnswered &event)
{
    if (const Subscription subscription = m_unanswered.take(event.id))
        subscription->setState(QMqttSubscription::Unsubscribed);
}

void QMqttClientPrivate::handle(const QMqttConnection::PingAnswered &)
{
    emit q->pingResponseReceived();
}

void QMqttClientPrivate::handle(const QMqttConnection::Ended &event)
{
    finish(event.error);
}

/** Drops the connection and what belongs to it, and enters Disconnected. */
void QMqttClientPrivate::finish(QMqttClient::ClientError error)
{
    std::vector<Subscription> ended = std::move(m_subscriptions);
    m_subscriptions.clear();
    ended.insert(ended.end(), m_unanswered.cbegin(), m_unanswered.cend());
    m_unanswered.clear();
    m_connection.reset();

    enter(QMqttClient::Disconnected, error);
    for (const Subscription &subscription : ended) {
        if (subscription && subscription->state() != QMqttSubscription::Error)
            subscription->setState(QMqttSubscription::Unsubscribed);
    }
}
