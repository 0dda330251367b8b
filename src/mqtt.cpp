// SPDX-License-Identifier: GPL-3.0-or-later
#include "mqtt.h"

#include "brokertopics.h"
#include "navigationcontroller.h"
#include "player.h"
#include "roon.h"
#include "roonzones.h"
#include "settings.h"
#include "spotify.h"
#include "velunor_state.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QMqttTopicFilter>
#include <QThread>
#include <QVariant>
#include <QtNumeric>

#include <memory>

namespace {

// Where the topic tree keeps what; level 0 is the appliance's own name on every topic.
enum Level {
    ServiceLevel = 1,
    KeyLevel = 3, // of appliance state and settings
    ConnectedLevel = 3,
    RemoteControlLevel = 4,
    SpotifyKeyLevel = 5,
    RoonLevel = 5,
    ZoneIdLevel = 6,
    RoonKeyLevel = 6,
    ZoneKeyLevel = 7,
};

/** A payload as text, up to its first zero byte. */
QString text(const QByteArray &payload)
{
    return QString::fromUtf8(payload.constData());
}

/** The property that @p level names; joined with the level below it, if it is one of @p groups. */
QString propertyName(
    const QStringList &levels, int level, std::initializer_list<QLatin1String> groups)
{
    const QString name = levels.value(level);
    for (const QLatin1String &group : groups) {
        if (name == group)
            return name + QLatin1Char('_') + levels.value(level + 1);
    }
    return name;
}

/** @p payload as a value of the type @p type; the type's null value if it does not parse. */
QVariant converted(const QByteArray &payload, int type)
{
    // Left to QVariant, a number too large for the type would wrap around or become infinite, and
    // an "inf" or "nan" would go out again in a volume command, and JSON has no such word.
    if (type == QMetaType::UInt)
        return payload.toUInt();
    if (type == QMetaType::Float) {
        const float number = payload.toFloat();
        return qIsFinite(number) ? number : 0.0f;
    }
    QVariant value(payload);
    value.convert(type);
    return value;
}

/**
 * Converts @p payload to the type of the property @p name of @p target and writes it; a text that
 * does not parse is written as the type's null value. @p method is named in the log, @p level is
 * that of the write's line.
 */
bool writeProperty(QObject *target, const QString &name, const QByteArray &payload,
    const char *method, QtMsgType level)
{
    const QByteArray key = name.toLocal8Bit();
    const QMetaObject *const metaObject = target->metaObject();
    const int index = metaObject->indexOfProperty(key.constData());
    if (index < 0) {
        qWarning().noquote().nospace() << method << " unknown property: " << name;
        return false;
    }
    const QMetaProperty property = metaObject->property(index);
    const int type = property.read(target).userType();
    if (!QVariant(payload).canConvert(type)) {
        qWarning().noquote().nospace() << method << " can't set type for property: " << name;
        return false;
    }
    const QVariant value = converted(payload, type);
    (level == QtInfoMsg ? qInfo() : qDebug()).noquote().nospace()
        << method << " setting property " << name << " to value: " << value.toString();
    property.write(target, value);
    return true;
}

} // namespace

Mqtt *Mqtt::instance()
{
    static Mqtt *const theInstance = new Mqtt;
    return theInstance;
}

Mqtt::Mqtt(quint16 port, QObject *parent)
    : QObject(parent)
    , m_client(new QMqttClient(this))
{
    qDebug().noquote().nospace() << "Mqtt::constructor in thread " << QThread::currentThreadId();
    m_client->setAutoKeepAlive(true);
    m_client->setHostname(QStringLiteral("127.0.0.1"));
    m_client->setPort(port);
    connect(m_client, &QMqttClient::connected, this, &Mqtt::connectedToBroker);
    connect(m_client, &QMqttClient::disconnected, this, &Mqtt::brokerDisconnected);
    connect(m_client, &QMqttClient::errorChanged, this, &Mqtt::error);
    connect(m_client, &QMqttClient::messageReceived, this, &Mqtt::messageReceived);
    qDebug() << "Mqtt::constructor: connecting...";
    m_client->connectToHost();
}

Mqtt::~Mqtt()
{
    qDebug() << "Mqtt::destructor";
    m_client->disconnectFromHost();
}

void Mqtt::subscribe(const QString &topic)
{
    qInfo().noquote().nospace() << "Mqtt::subscribe() to " << topic;
    m_client->subscribe(QMqttTopicFilter(topic), 0);
}

void Mqtt::publish(QString topic, QByteArray payload, bool retain, uchar qos, bool cache)
{
    if (cache) {
        const QByteArray cached = m_cache.value(topic);
        if (!cached.isEmpty()) {
            // Deliberate: logged before the comparison, so also for a new payload, which is sent.
            qDebug() << "Mqtt::publish() cached value, bail out";
            if (cached == payload)
                return;
        }
        m_cache.insert(topic, payload);
    }
    m_client->publish(QMqttTopicName(topic), payload, qos, retain);
}

void Mqtt::connectionTimeout()
{
    qWarning() << "Mqtt::connectionTimeout()";
}

void Mqtt::connectedToBroker()
{
    qInfo() << "Mqtt::connectedToBroker()";
    subscribe(BrokerTopics::settings());
    subscribe(BrokerTopics::state());
    subscribe(BrokerTopics::core());
    subscribe(BrokerTopics::zones());
    subscribe(BrokerTopics::remoteConnected());
    subscribe(BrokerTopics::command());
    subscribe(BrokerTopics::spotify());
    m_connected = true;
    emit connected();
}

void Mqtt::brokerDisconnected()
{
    qWarning() << "Mqtt::brokerDisconnected()";
    m_connected = false;
}

void Mqtt::error(QMqttClient::ClientError code)
{
    const char *const name = QMetaEnum::fromType<QMqttClient::ClientError>().valueToKey(code);
    qCritical().noquote().nospace()
        << "Mqtt::error() " << (name ? QByteArray(name) : QByteArray::number(code));
    if (code != QMqttClient::NoError)
        Player::instance()->connectionStateChanged(false);
}

void Mqtt::messageReceived(QByteArray payload, QMqttTopicName topic)
{
    processMessageApi(payload, topic);
}

void Mqtt::processMessageApi(const QByteArray &payload, const QMqttTopicName &topic)
{
    qDebug().noquote().nospace() << "Mqtt::processMessageApi() receiving msg " << topic.name();

    const QStringList levels = topic.levels();
    if (levels.value(ServiceLevel) == QLatin1String("State")) {
        updateVelunorState(levels, payload);
    } else if (levels.value(ServiceLevel) == QLatin1String("Settings")) {
        updateSettings(levels, payload);
    } else if (levels.value(ConnectedLevel) == QLatin1String("connected")) {
        // Deliberate: the topic that is subscribed to has "connected" one level deeper, and its
        // messages do not get here.
        processRemoteConnected(payload);
    } else if (levels.value(RemoteControlLevel) == QLatin1String("Control")) {
        processCommand(payload);
    } else if (levels.value(RoonLevel) == QLatin1String("Zones")
        && levels.value(ZoneIdLevel) == QLatin1String("available")) {
        qDebug().noquote().nospace()
            << "Mqtt::processMessageApi() received 'available' message " << text(payload);
        RoonZones::instance()->updateAvailableZones(payload);
    } else if (levels.value(RoonLevel) == QLatin1String("Zones") && levels.size() > ZoneIdLevel) {
        processZone(levels, payload);
    } else if (levels.value(RoonLevel) == QLatin1String("Roon")) {
        updateRoon(levels, payload);
    } else if (levels.value(RemoteControlLevel) == QLatin1String("spotify")) {
        updateSpotify(levels, payload);
    } else {
        qWarning().noquote().nospace()
            << "Mqtt::processMessageApi() unknown topic: " << topic.name();
    }
}

void Mqtt::processRemoteConnected(const QByteArray &payload)
{
    Player::instance()->setRemoteConnected(QVariant(payload).toBool());
}

void Mqtt::processCommand(const QByteArray &payload)
{
    // The player's own commands come back here as well, and end as unsupported ones.
    qInfo().noquote().nospace() << "Mqtt::processMessageApi() received remote control command: "
                                << text(payload);
    const QJsonObject object = QJsonDocument::fromJson(payload).object();
    const auto member = object.constFind(QLatin1String("command"));
    if (member == object.constEnd())
        return;
    const QString command = member.value().toString();
    if (command == QLatin1String("toggle_standby")) {
        qInfo() << "Mqtt::processMessageApi() received 'toggle_standby' command";
        NavigationController::instance()->cycleDisplayOutput();
    } else {
        qWarning().noquote().nospace()
            << "Mqtt::processMessageApi() ignore unsupported command: " << command;
    }
}

void Mqtt::processZone(const QStringList &levels, const QByteArray &payload)
{
    qDebug().noquote().nospace() << "Mqtt::processMessageApi() receiving Roon zones update "
                                 << levels.join(QLatin1Char('/'));
    RoonZones *const zones = RoonZones::instance();
    const QString id = levels.value(ZoneIdLevel);
    RoonZone *zone = zones->find(id);
    if (!zone) {
        qWarning()
            << "Mqtt::processMessageApi() received Roon zone data, but no zone object found!";
        auto created = id.isEmpty() ? nullptr : std::make_unique<RoonZone>(id);
        if (!created || !zones->add(created.get())) {
            qWarning()
                << "Mqtt::processMessageApi() something went wrong while inserting Roon zone";
            return;
        }
        zone = created.release();
        qDebug() << "Mqtt::processMessageApi() adding Roon zone completed!";
    }
    updateZone(zone, levels, payload);
    Player::instance()->update();
}

bool Mqtt::updateRoon(const QStringList &levels, const QByteArray &payload)
{
    const QString name = levels.value(RoonKeyLevel);
    Roon *const roon = Roon::instance();
    if (!writeProperty(roon, name, payload, "Mqtt::updateRoon()", QtInfoMsg))
        return false;
    // Deliberate: the write has notified already; the listeners only evaluate once more.
    if (name == QLatin1String("coreDetected"))
        roon->setCoreDetected(QVariant(payload).toBool());
    return true;
}

bool Mqtt::updateZone(RoonZone *zone, const QStringList &levels, const QByteArray &payload)
{
    const QString name = propertyName(levels, ZoneKeyLevel,
        { QLatin1String("settings"), QLatin1String("nowPlaying"), QLatin1String("volume") });
    if (name == QLatin1String("outputs")) {
        zone->setOutputs(payload);
        return true;
    }
    return writeProperty(zone, name, payload, "Mqtt::updateZone()", QtDebugMsg);
}

bool Mqtt::updateSpotify(const QStringList &levels, const QByteArray &payload)
{
    qInfo().noquote().nospace() << "Mqtt::updateSpotify() " << levels.value(SpotifyKeyLevel);
    qDebug().noquote().nospace() << "Mqtt::updateSpotify() " << payload;
    const QString name = propertyName(levels, SpotifyKeyLevel, { QLatin1String("nowPlaying") });
    return writeProperty(Spotify::instance(), name, payload, "Mqtt::updateSpotify()", QtDebugMsg);
}

bool Mqtt::updateVelunorState(const QStringList &levels, const QByteArray &payload)
{
    const QString name = levels.value(KeyLevel);
    qInfo().noquote().nospace() << "Mqtt::updateVelunorState() " << name;
    VelunorState *const state = VelunorState::instance();
    const QByteArray key = name.toLocal8Bit();
    if (state->metaObject()->indexOfProperty(key.constData()) < 0) {
        qWarning().noquote().nospace() << "Mqtt::updateVelunorState() unknown property: " << name;
        return false;
    }
    // Deliberate: all appliance state travels as a boolean; its two text properties then read
    // "true" or "false".
    const bool value = QVariant(payload).toBool();
    qDebug().noquote().nospace() << "Mqtt::updateVelunorState() setting property " << name
                                 << " to value: " << value;
    state->setProperty(key.constData(), value);
    return true;
}

bool Mqtt::updateSettings(const QStringList &levels, const QByteArray &payload)
{
    const QString key = levels.value(KeyLevel);
    qDebug().noquote().nospace() << "Mqtt::updateSettings() " << key;

    Settings *const settings = Settings::instance();
    const QVariant value(payload);
    if (key == QLatin1String("touchscreen_blankscreen"))
        settings->setBlankScreen(value.toBool());
    else if (key == QLatin1String("touchscreen_scrolling"))
        settings->setScrolling(value.toBool());
    else if (key == QLatin1String("touchscreen_clock24"))
        settings->setTimeFormat(value.toBool());
    else if (key == QLatin1String("touchscreen_clockcolor"))
        settings->setLcdClockColor(value.toString());
    else if (key == QLatin1String("touchscreen_custom_clockcolor"))
        settings->setLcdCustomClockColor(value.toString());
    else if (key == QLatin1String("touchscreen_screensaver_time"))
        settings->setScreenSaverTime(payload.toUInt());
    else if (key == QLatin1String("touchscreen_hide_power_button"))
        settings->setHidePowerButton(value.toBool());
    else if (key == QLatin1String("touchscreen_hide_option_buttons"))
        settings->setHideOptionsButtons(value.toBool());
    else if (key == QLatin1String("touchscreen_show_blur_image"))
        settings->setShowBlurBackground(value.toBool());
    return true;
}
