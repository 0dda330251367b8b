// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtNumeric>

#include <optional>

/**
 * One playback endpoint of the Roon Core: an output, or a group of outputs that play together.
 *
 * A passive mirror: messaging writes the properties by name, the player copies them. A property
 * stores a new value only when it differs; only id, name and state notify. Main thread only.
 */
class RoonZone : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString id READ id WRITE setId NOTIFY zoneChanged)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY zoneChanged)
    Q_PROPERTY(QString state READ state WRITE setState NOTIFY zoneChanged)
    Q_PROPERTY(
        uint nowPlaying_seekPosition READ nowPlayingSeekPosition WRITE setNowPlayingSeekPosition)
    Q_PROPERTY(uint nowPlaying_length READ nowPlayingLength WRITE setNowPlayingLength)
    Q_PROPERTY(QString nowPlaying_album READ nowPlayingAlbum WRITE setNowPlayingAlbum)
    Q_PROPERTY(QString nowPlaying_song READ nowPlayingSong WRITE setNowPlayingSong)
    Q_PROPERTY(QString nowPlaying_artist READ nowPlayingArtist WRITE setNowPlayingArtist)
    Q_PROPERTY(QString nowPlaying_imageKey READ nowPlayingImageKey WRITE setNowPlayingImageKey)
    Q_PROPERTY(bool settings_shuffle READ settingsShuffle WRITE setSettingsShuffle)
    Q_PROPERTY(QString settings_loop READ settingsLoop WRITE setSettingsLoop)
    Q_PROPERTY(bool settings_autoRadio READ settingsAutoRadio WRITE setSettingsAutoRadio)
    Q_PROPERTY(bool volume_available READ volumeAvailable WRITE setVolumeAvailable)
    Q_PROPERTY(QString volume_type READ volumeType WRITE setVolumeType)
    Q_PROPERTY(float volume_value READ volumeValue WRITE setVolumeValue)
    Q_PROPERTY(float volume_min READ volumeMin WRITE setVolumeMin)
    Q_PROPERTY(float volume_max READ volumeMax WRITE setVolumeMax)
    Q_PROPERTY(float volume_hard_limit_min READ volumeHardLimitMin WRITE setVolumeHardLimitMin)
    Q_PROPERTY(float volume_hard_limit_max READ volumeHardLimitMax WRITE setVolumeHardLimitMax)
    Q_PROPERTY(float volume_soft_limit READ volumeSoftLimit WRITE setVolumeSoftLimit)
    Q_PROPERTY(float volume_step READ volumeStep WRITE setVolumeStep)
    Q_PROPERTY(bool volume_is_muted READ volumeIsMuted WRITE setVolumeIsMuted)
    Q_PROPERTY(uint queue_items_remaining READ queueItemsRemaining WRITE setQueueItemsRemaining)
    Q_PROPERTY(uint queue_time_remaining READ queueTimeRemaining WRITE setQueueTimeRemaining)
    Q_PROPERTY(bool is_previous_allowed READ isPreviousAllowed WRITE setIsPreviousAllowed)
    Q_PROPERTY(bool is_next_allowed READ isNextAllowed WRITE setIsNextAllowed)
    Q_PROPERTY(bool is_pause_allowed READ isPauseAllowed WRITE setIsPauseAllowed)
    Q_PROPERTY(bool is_play_allowed READ isPlayAllowed WRITE setIsPlayAllowed)
    Q_PROPERTY(bool is_seek_allowed READ isSeekAllowed WRITE setIsSeekAllowed)

public:
    explicit RoonZone(const QString &id);

    /** The core's opaque identifier of the zone. */
    QString id() const { return m_id; }
    void setId(const QString &value);

    /** Display name; "unknown" until the first message. */
    QString name() const { return m_name; }
    void setName(const QString &value);

    /** For example "playing" or "paused"; "unknown" until the first message. */
    QString state() const { return m_state; }
    void setState(const QString &value);

    /** Seconds since the track began. */
    uint nowPlayingSeekPosition() const { return m_nowPlayingSeekPosition; }
    void setNowPlayingSeekPosition(uint value) { m_nowPlayingSeekPosition = value; }

    /** Seconds; 0 when unknown, as for a stream. */
    uint nowPlayingLength() const { return m_nowPlayingLength; }
    void setNowPlayingLength(uint value) { m_nowPlayingLength = value; }

    QString nowPlayingAlbum() const { return m_nowPlayingAlbum; }
    void setNowPlayingAlbum(const QString &value) { m_nowPlayingAlbum = value; }

    QString nowPlayingSong() const { return m_nowPlayingSong; }
    void setNowPlayingSong(const QString &value) { m_nowPlayingSong = value; }

    QString nowPlayingArtist() const { return m_nowPlayingArtist; }
    void setNowPlayingArtist(const QString &value) { m_nowPlayingArtist = value; }

    /** Key of the cover art at the core's image service; empty for none. */
    QString nowPlayingImageKey() const { return m_nowPlayingImageKey; }
    void setNowPlayingImageKey(const QString &value) { m_nowPlayingImageKey = value; }

    bool settingsShuffle() const { return m_settingsShuffle; }
    void setSettingsShuffle(bool value) { m_settingsShuffle = value; }

    /** "disabled", "loop" or "loop_one". */
    QString settingsLoop() const { return m_settingsLoop; }
    void setSettingsLoop(const QString &value) { m_settingsLoop = value; }

    bool settingsAutoRadio() const { return m_settingsAutoRadio; }
    void setSettingsAutoRadio(bool value) { m_settingsAutoRadio = value; }

    bool volumeAvailable() const { return m_volumeAvailable; }
    void setVolumeAvailable(bool value) { m_volumeAvailable = value; }

    /** For example "number" or "db". */
    QString volumeType() const { return m_volumeType; }
    void setVolumeType(const QString &value) { m_volumeType = value; }

    /** In the zone's own units, like all the volume numbers. */
    float volumeValue() const { return m_volumeValue; }
    void setVolumeValue(float value) { m_volumeValue = value; }

    float volumeMin() const { return m_volumeMin; }
    void setVolumeMin(float value) { m_volumeMin = value; }

    float volumeMax() const { return m_volumeMax; }
    void setVolumeMax(float value) { m_volumeMax = value; }

    /** The lowest value that the zone accepts. */
    float volumeHardLimitMin() const { return m_volumeHardLimitMin.value_or(0.0f); }
    void setVolumeHardLimitMin(float value) { m_volumeHardLimitMin = value; }

    /** The highest value that the zone accepts. */
    float volumeHardLimitMax() const { return m_volumeHardLimitMax.value_or(0.0f); }
    void setVolumeHardLimitMax(float value) { m_volumeHardLimitMax = value; }

    /** The highest value that the listener wants to reach from here. */
    float volumeSoftLimit() const { return m_volumeSoftLimit.value_or(0.0f); }
    void setVolumeSoftLimit(float value) { m_volumeSoftLimit = value; }

    // The limits once more, but no numbers until they are published: 0 would be a limit.
    float knownHardLimitMin() const { return m_volumeHardLimitMin.value_or(qQNaN()); }
    float knownHardLimitMax() const { return m_volumeHardLimitMax.value_or(qQNaN()); }
    float knownSoftLimit() const { return m_volumeSoftLimit.value_or(qQNaN()); }

    /** The smallest change, 0.5 for example. */
    float volumeStep() const { return m_volumeStep; }
    void setVolumeStep(float value) { m_volumeStep = value; }

    bool volumeIsMuted() const { return m_volumeIsMuted; }
    void setVolumeIsMuted(bool value) { m_volumeIsMuted = value; }

    uint queueItemsRemaining() const { return m_queueItemsRemaining; }
    void setQueueItemsRemaining(uint value) { m_queueItemsRemaining = value; }

    /** Seconds. */
    uint queueTimeRemaining() const { return m_queueTimeRemaining; }
    void setQueueTimeRemaining(uint value) { m_queueTimeRemaining = value; }

    bool isPreviousAllowed() const { return m_isPreviousAllowed; }
    void setIsPreviousAllowed(bool value) { m_isPreviousAllowed = value; }

    bool isNextAllowed() const { return m_isNextAllowed; }
    void setIsNextAllowed(bool value) { m_isNextAllowed = value; }

    bool isPauseAllowed() const { return m_isPauseAllowed; }
    void setIsPauseAllowed(bool value) { m_isPauseAllowed = value; }

    bool isPlayAllowed() const { return m_isPlayAllowed; }
    void setIsPlayAllowed(bool value) { m_isPlayAllowed = value; }

    bool isSeekAllowed() const { return m_isSeekAllowed; }
    void setIsSeekAllowed(bool value) { m_isSeekAllowed = value; }

    /** The display names of the outputs that make up the zone. */
    QStringList outputs() const { return m_outputs; }
    /**
     * Replaces the outputs by the "display_name" of each element of the JSON array @p json; an
     * element without one counts as an empty name, anything that is not an array empties the list.
     * Notifies nobody.
     */
    void setOutputs(const QByteArray &json);

signals:
    void zoneChanged();

private:
    QString m_id;
    QString m_name = QStringLiteral("unknown");
    QString m_state = QStringLiteral("unknown");
    uint m_nowPlayingSeekPosition = 0;
    uint m_nowPlayingLength = 0;
    QString m_nowPlayingAlbum;
    QString m_nowPlayingSong;
    QString m_nowPlayingArtist;
    QString m_nowPlayingImageKey;
    bool m_settingsShuffle = false;
    QString m_settingsLoop;
    bool m_settingsAutoRadio = false;
    bool m_volumeAvailable = false;
    QString m_volumeType;
    float m_volumeValue = 0.0f;
    float m_volumeMin = 0.0f;
    float m_volumeMax = 0.0f;
    std::optional<float> m_volumeHardLimitMin;
    std::optional<float> m_volumeHardLimitMax;
    std::optional<float> m_volumeSoftLimit;
    float m_volumeStep = 0.0f;
    bool m_volumeIsMuted = false;
    uint m_queueItemsRemaining = 0;
    uint m_queueTimeRemaining = 0;
    bool m_isPreviousAllowed = false;
    bool m_isNextAllowed = false;
    bool m_isPauseAllowed = false;
    bool m_isPlayAllowed = false;
    bool m_isSeekAllowed = false;
    QStringList m_outputs;
};
