// SPDX-License-Identifier: GPL-3.0-or-later
#include "player.h"

#include "apiclient.h"
#include "brokertopics.h"
#include "coveraddress.h"
#include "mqtt.h"
#include "navigationcontroller.h"
#include "roonzones.h"
#include "settings.h"
#include "storeifchanged.h"

#include <QDateTime>
#include <QDebug>
#include <QProcessEnvironment>
#include <QThread>

#include <cmath>

namespace {

// Deliberate: each text has a limit of its own.
constexpr int SongLimit = 38;
constexpr int ArtistLimit = 30;
constexpr int AlbumLimit = 24;

constexpr float VolumeThreshold = 0.1f;

QString unknownZone()
{
    return QStringLiteral("UNKNOWN");
}

QString minutesAndSeconds(uint seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

QString trueOrFalse(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

/** What a volume command carries: exactly one decimal, whatever the screen shows. */
QString oneDecimal(float value)
{
    return QString::number(static_cast<double>(value), 'f', 1);
}

} // namespace

Player *Player::instance()
{
    static Player *const theInstance = new Player;
    return theInstance;
}

Player::Player(QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "Player::constructor in thread " << QThread::currentThreadId();

    const Settings *const settings = Settings::instance();
    Mqtt *const mqtt = Mqtt::instance();
    connect(settings, &Settings::timeFormatChanged, this, &Player::timeFormatChanged);
    connect(settings, &Settings::scrollingChanged, this, &Player::scrollingChanged);
    connect(mqtt, &Mqtt::connected, this, &Player::mqttConnected);
    m_use24HourClock = settings->timeFormat();

    // Deliberate: without the variable a fixed zone name is wanted.
    m_wantedZone = QProcessEnvironment::systemEnvironment().value(
        QStringLiteral("VELUNOR_TOUCHUI_CONTROL_ZONE"), QStringLiteral("Hugo2X"));
    qInfo().noquote().nospace() << "Player::Player() setting wanted zone to " << m_wantedZone;
    if (mqtt->isConnected())
        announceWantedZone();
}

void Player::update()
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    qDebug().noquote().nospace() << "Player::update() looking for zone " << m_wantedZone
                                 << " with ID " << id;
    const RoonZone *const zone = RoonZones::instance()->find(id);
    if (!zone) {
        qDebug().noquote().nospace() << "Player::update() can't find zone " << m_wantedZone;
        // Deliberate: the connection's signal, not the zone's; the navigation listens to that one.
        if (storeIfChanged(m_zone, unknownZone()))
            emit remoteConnectionChanged();
        return;
    }

    m_copiedZoneId = id;
    setZone(zone->name());
    if (!zone->state().isEmpty())
        setRoonState(zone->state());
    setArtist(zone->nowPlayingArtist());
    setSong(zone->nowPlayingSong());
    setAlbum(zone->nowPlayingAlbum());
    if (!zone->nowPlayingImageKey().isEmpty())
        setImageKey(zone->nowPlayingImageKey());
    setLength(zone->nowPlayingLength());
    setSeekPosition(zone->nowPlayingSeekPosition());
    setAutoRadio(zone->settingsAutoRadio());
    setShuffle(zone->settingsShuffle());
    setLoop(zone->settingsLoop());
    setQueueItemsRemaining(zone->queueItemsRemaining());
    setPrevAllowed(zone->isPreviousAllowed());
    setNextAllowed(zone->isNextAllowed());
    setPauseAllowed(zone->isPauseAllowed());
    setPlayAllowed(zone->isPlayAllowed());
    setSeekAllowed(zone->isSeekAllowed());
    copyVolume(*zone);

    // Queued, so that the screen is decided on once the message has been handled completely.
    NavigationController *const navigation = NavigationController::instance();
    QMetaObject::invokeMethod(navigation, &NavigationController::updateState, Qt::QueuedConnection);
}

void Player::copyVolume(const RoonZone &zone)
{
    const bool wasAvailable = m_volumeAvailable;
    m_volumeAvailable = zone.volumeAvailable();
    if (m_volumeAvailable) {
        qDebug().noquote().nospace()
            << "Player::updateFromZones() volume available for zone: " << zone.name();
        setVolume(zone.volumeValue());
        m_minVolume = zone.volumeMin();
        m_maxVolume = zone.volumeMax();
        m_limitMinVolume = zone.knownHardLimitMin();
        m_limitMaxVolume = zone.knownHardLimitMax();
        m_limitSoftVolume = zone.knownSoftLimit();
        // Deliberate: notified on every update, changed or not.
        emit minVolumeChanged();
        emit maxVolumeChanged();
        emit limitMinVolumeChanged();
        emit limitMaxVolumeChanged();
        emit limitSoftVolumeChanged();
        setVolumeStep(zone.volumeStep());
        if (storeIfChanged(m_volumeMuted, zone.volumeIsMuted()))
            emit volumeMuteChanged();
    }
    if (m_volumeAvailable != wasAvailable)
        emit volumeAvailableChanged();
}

QString Player::imageUrl() const
{
    const QString url = coverAddress(m_imageKey, ShownCoverSize);
    qDebug().noquote().nospace() << "Player::imageUrl() called: " << url;
    return url;
}

QString Player::bigImageUrl() const
{
    const QString url = coverAddress(m_imageKey, FullScreenCoverSize);
    qDebug().noquote().nospace() << "Player::bigImageUrl() called: " << url;
    return url;
}

QString Player::song() const
{
    return shortened(m_song, SongLimit);
}

QString Player::artist() const
{
    return shortened(m_artist, ArtistLimit);
}

QString Player::album() const
{
    return shortened(m_album, AlbumLimit);
}

QString Player::shortened(const QString &text, int limit) const
{
    if (Settings::instance()->scrolling() || text.size() <= limit)
        return text;
    return text.left(limit) + QStringLiteral("...");
}

QString Player::time() const
{
    return QDateTime::currentDateTime().toString(
        m_use24HourClock ? QStringLiteral("H:mm:ss") : QStringLiteral("h:mm:ss a"));
}

QString Player::seekPositionText() const
{
    return minutesAndSeconds(m_seekPosition);
}

QString Player::lengthText() const
{
    return minutesAndSeconds(m_length);
}

void Player::setRoonState(const QString &value)
{
    if (m_roonState == value)
        return;
    m_previousRoonState = m_roonState;
    m_roonState = value;
    emit roonStateChanged();
    qInfo().noquote().nospace() << "Player::setRoonState() Roon state set to: " << value;
}

void Player::setSong(const QString &value)
{
    if (storeIfChanged(m_song, value))
        emit songChanged();
}

void Player::setArtist(const QString &value)
{
    if (storeIfChanged(m_artist, value))
        emit artistChanged();
}

void Player::setAlbum(const QString &value)
{
    if (storeIfChanged(m_album, value))
        emit albumChanged();
}

void Player::setImageKey(const QString &value)
{
    if (storeIfChanged(m_imageKey, value))
        emit imageKeyChanged();
}

void Player::setRemoteConnected(bool value)
{
    if (storeIfChanged(m_remoteConnected, value))
        emit remoteConnectionChanged();
}

void Player::setSeekPosition(uint value)
{
    if (storeIfChanged(m_seekPosition, value))
        emit seekPositionChanged();
}

void Player::setAutoRadio(bool value)
{
    if (storeIfChanged(m_autoRadio, value))
        emit autoRadioChanged();
}

void Player::setLoop(const QString &value)
{
    if (storeIfChanged(m_loop, value))
        emit loopChanged();
}

void Player::setShuffle(bool value)
{
    if (storeIfChanged(m_shuffle, value))
        emit shuffleChanged();
}

void Player::setLength(uint value)
{
    if (storeIfChanged(m_length, value))
        emit lengthChanged();
}

void Player::setZone(const QString &value)
{
    if (storeIfChanged(m_zone, value))
        emit zoneChanged();
}

void Player::setWantedZone(const QString &value)
{
    if (storeIfChanged(m_wantedZone, value))
        emit wantedZoneChanged();
}

void Player::setVolumeAvailable(bool value)
{
    if (storeIfChanged(m_volumeAvailable, value))
        emit volumeAvailableChanged();
}

void Player::setMinVolume(float value)
{
    if (storeIfChanged(m_minVolume, value))
        emit minVolumeChanged();
}

void Player::setMaxVolume(float value)
{
    if (storeIfChanged(m_maxVolume, value))
        emit maxVolumeChanged();
}

void Player::setLimitMinVolume(float value)
{
    if (storeIfChanged(m_limitMinVolume, value))
        emit limitMinVolumeChanged();
}

void Player::setLimitMaxVolume(float value)
{
    if (storeIfChanged(m_limitMaxVolume, value))
        emit limitMaxVolumeChanged();
}

void Player::setLimitSoftVolume(float value)
{
    if (storeIfChanged(m_limitSoftVolume, value))
        emit limitSoftVolumeChanged();
}

void Player::setQueueItemsRemaining(uint value)
{
    if (storeIfChanged(m_queueItemsRemaining, value))
        emit queueItemsRemainingChanged();
}

void Player::setPrevAllowed(bool value)
{
    if (storeIfChanged(m_prevAllowed, value))
        emit prevAllowedChanged();
}

void Player::setNextAllowed(bool value)
{
    if (storeIfChanged(m_nextAllowed, value))
        emit nextAllowedChanged();
}

void Player::setPauseAllowed(bool value)
{
    if (storeIfChanged(m_pauseAllowed, value))
        emit pauseAllowedChanged();
}

void Player::setPlayAllowed(bool value)
{
    if (storeIfChanged(m_playAllowed, value))
        emit playAllowedChanged();
}

void Player::setSeekAllowed(bool value)
{
    if (storeIfChanged(m_seekAllowed, value))
        emit seekAllowedChanged();
}

void Player::setVolume(float value)
{
    if (std::fabs(m_volume - value) > VolumeThreshold) {
        qInfo().noquote().nospace() << "Player::setVolume() " << value;
        m_volume = value;
        emit volumeChanged();
    } else {
        qDebug().noquote().nospace() << "Player::setVolume() SKIPPED: " << value;
    }
}

void Player::setVolumeStep(float step)
{
    m_volumeStep = step;
    emit volumeStepChanged();
    const uint precision = step > 0.0f && step < 1.0f ? 1 : 0;
    if (m_volumeDisplayPrecision == precision)
        return;
    // Only the finer display is worth a line in the normal log.
    (precision == 1 ? qInfo() : qDebug()).noquote().nospace()
        << "Player::setVolumeStep() changing precision to " << precision << " based on: " << step;
    m_volumeDisplayPrecision = precision;
}

void Player::setVolumeMuted(float muted)
{
    if (storeIfChanged(m_volumeMuted, muted != 0.0f))
        emit volumeMuteChanged();
}

void Player::playPause()
{
    const QString id = wantedZoneId();
    if (!id.isEmpty())
        sendCommand(id, QStringLiteral("playpause"));
}

void Player::prev()
{
    const QString id = wantedZoneId();
    if (!id.isEmpty())
        sendCommand(id, QStringLiteral("previous"));
}

void Player::next()
{
    const QString id = wantedZoneId();
    if (!id.isEmpty())
        sendCommand(id, QStringLiteral("next"));
}

// Deliberate: the three toggles start from the state that was last heard of, not from what was last
// asked for, so two quick touches send the same value twice.

void Player::clickedRadioButton()
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    const QString radio = trueOrFalse(!m_autoRadio);
    qDebug().noquote().nospace() << "Player::clickedRadioButton() " << radio;
    sendCommand(id, QStringLiteral("set_radio"), QStringLiteral("\"radio\":") + radio);
}

void Player::clickedShuffleButton()
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    const QString shuffle = trueOrFalse(!m_shuffle);
    qDebug().noquote().nospace() << "Player::clickedShuffleButton() " << shuffle;
    sendCommand(id, QStringLiteral("set_shuffle"), QStringLiteral("\"shuffle\":") + shuffle);
}

void Player::clickedLoopButton()
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    QString loop = QStringLiteral("disabled");
    if (m_loop == QLatin1String("disabled"))
        loop = QStringLiteral("loop");
    else if (m_loop == QLatin1String("loop"))
        loop = QStringLiteral("loop_one");
    qDebug().noquote().nospace() << "Player::clickedLoopButton() " << loop;
    sendCommand(id, QStringLiteral("set_loopmode"),
        QStringLiteral("\"loop\":\"") + loop + QLatin1Char('"'));
}

void Player::movedVolumeSlider(float value)
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    qDebug().noquote().nospace() << "Player::movedVolumeSlider() " << value;
    // The only command that is cached: a finger resting on the slider sends its value once.
    sendCommand(id, QStringLiteral("set_volume"),
        QStringLiteral("\"how\":\"absolute\",\"value\":") + oneDecimal(value), true);
}

void Player::timeFormatChanged(bool is24Hours)
{
    m_use24HourClock = is24Hours;
}

void Player::scrollingChanged(bool)
{
    emit songChanged();
    emit albumChanged();
    emit artistChanged();
}

void Player::connectionStateChanged(bool up)
{
    qDebug().noquote().nospace() << "Player::connectionStateChanged() " << up;
    setRemoteConnected(up);
}

void Player::commandVolumeDown()
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    qDebug() << "Player::commandVolumeDown()";
    sendRelativeVolume(
        id, 0.0f - m_volumeStep); // not a mere sign change: a step of 0 is to read 0.0, not -0.0
}

void Player::commandVolumeUp()
{
    const QString id = wantedZoneId();
    if (id.isEmpty())
        return;
    qDebug() << "Player::commandVolumeUp()";
    sendRelativeVolume(id, m_volumeStep);
}

void Player::selectZone(QString name)
{
    qInfo().noquote().nospace() << "Player::selectZone() " << name;
    m_wantedZone = name;
    update();
    announceWantedZone();
    emit wantedZoneChanged();
}

void Player::installUpdate()
{
    qInfo() << "Player::installUpdate()";
    ApiClient::instance()->installUpdate();
}

void Player::mqttConnected()
{
    qInfo() << "Player::mqttConnected()";
    announceWantedZone();
}

QString Player::wantedZoneId() const
{
    return RoonZones::instance()->findZoneByDisplayName(m_wantedZone);
}

void Player::announceWantedZone() const
{
    Mqtt::instance()->publish(BrokerTopics::displayZone(), m_wantedZone.toLocal8Bit(), true, 1);
}

void Player::sendRelativeVolume(const QString &id, float change) const
{
    sendCommand(id, QStringLiteral("set_volume"),
        QStringLiteral("\"how\":\"relative\",\"value\":") + oneDecimal(change));
}

void Player::sendCommand(
    const QString &id, const QString &command, const QString &arguments, bool cache) const
{
    // Deliberate: put together as plain text, the zone id goes in as it is.
    QString payload = QStringLiteral("{\"command\":\"") + command + QStringLiteral("\",");
    if (!arguments.isEmpty())
        payload += arguments + QLatin1Char(',');
    payload += QStringLiteral("\"zone_id\":\"") + id + QStringLiteral("\"}");
    Mqtt::instance()->publish(BrokerTopics::command(), payload.toLocal8Bit(), false, 1, cache);
}
