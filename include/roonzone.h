// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "changenotifier.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtNumeric>

#include <optional>

/**
 * One playback endpoint of the Roon Core: an output, or a group of outputs that play together.
 *
 * A passive mirror: messaging writes the properties by name, the player copies them. Only id, name
 * and state notify, and only of a change. Until published, numbers are 0, flags false and texts
 * empty except where noted. Main thread only.
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
    /** A zone that has not spoken yet. */
    explicit RoonZone(const QString &id);

    /** The core's opaque identifier of the zone. */
    QString id() const { return m_id; }
    void setId(const QString &value);

    /** Display name; "unknown" until the first message. */
    QString name() const { return m_name; }
    void setName(const QString &value);

    /** For example "playing" or "paused"; "unknown" until published, empty if published so. */
    QString state() const { return m_state; }
    void setState(const QString &value);

    /** Seconds since the track began. */
    uint nowPlayingSeekPosition() const { return m_nowPlayingSeekPosition; }
    void setNowPlayingSeekPosition(uint value) { m_nowPlayingSeekPosition = value; }

    /** Seconds that the track takes; 0 when unknown, as for a stream. */
    uint nowPlayingLength() const { return m_nowPlayingLength; }
    void setNowPlayingLength(uint value) { m_nowPlayingLength = value; }

    /** Title of the album. */
    QString nowPlayingAlbum() const { return m_nowPlayingAlbum; }
    void setNowPlayingAlbum(const QString &value) { m_nowPlayingAlbum = value; }

    /** Title of the track. */
    QString nowPlayingSong() const { return m_nowPlayingSong; }
    void setNowPlayingSong(const QString &value) { m_nowPlayingSong = value; }

    /** Who performs it. */
    QString nowPlayingArtist() const { return m_nowPlayingArtist; }
    void setNowPlayingArtist(const QString &value) { m_nowPlayingArtist = value; }

    /** Key of the cover art at the core's image service; empty for none. */
    QString nowPlayingImageKey() const { return m_nowPlayingImageKey; }
    void setNowPlayingImageKey(const QString &value) { m_nowPlayingImageKey = value; }

    /** Whether the queue is played in random order. */
    bool settingsShuffle() const { return m_settingsShuffle; }
    void setSettingsShuffle(bool value) { m_settingsShuffle = value; }

    /** "disabled", "loop" or "loop_one"; any other text is kept as it comes. */
    QString settingsLoop() const { return m_settingsLoop; }
    void setSettingsLoop(const QString &value) { m_settingsLoop = value; }

    /** Whether the core goes on with music of its own choice when the queue has ended. */
    bool settingsAutoRadio() const { return m_settingsAutoRadio; }
    void setSettingsAutoRadio(bool value) { m_settingsAutoRadio = value; }

    /** Whether the zone has a volume that can be set. */
    bool volumeAvailable() const { return m_volumeAvailable; }
    void setVolumeAvailable(bool value) { m_volumeAvailable = value; }

    /** For example "number" or "db". */
    QString volumeType() const { return m_volumeType; }
    void setVolumeType(const QString &value) { m_volumeType = value; }

    /** The present volume; all volume numbers are in the zone's own units. */
    float volumeValue() const { return m_volumeValue; }
    void setVolumeValue(float value) { m_volumeValue = value; }

    /** Lower end of the zone's scale. */
    float volumeMin() const { return m_volumeMin; }
    void setVolumeMin(float value) { m_volumeMin = value; }

    /** Upper end of the zone's scale. */
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

    // The three limits once more, but NaN until they are published: 0 would be a limit.

    /** volumeHardLimitMin(), or NaN. */
    float knownHardLimitMin() const { return m_volumeHardLimitMin.value_or(qQNaN()); }
    /** volumeHardLimitMax(), or NaN. */
    float knownHardLimitMax() const { return m_volumeHardLimitMax.value_or(qQNaN()); }
    /** volumeSoftLimit(), or NaN. */
    float knownSoftLimit() const { return m_volumeSoftLimit.value_or(qQNaN()); }

    /** The smallest volume change, for example 0.5. */
    float volumeStep() const { return m_volumeStep; }
    void setVolumeStep(float value) { m_volumeStep = value; }

    /** Whether the zone is muted; says nothing of volumeValue(). */
    bool volumeIsMuted() const { return m_volumeIsMuted; }
    void setVolumeIsMuted(bool value) { m_volumeIsMuted = value; }

    /** How many tracks the queue still holds, as the zone counts them. */
    uint queueItemsRemaining() const { return m_queueItemsRemaining; }
    void setQueueItemsRemaining(uint value) { m_queueItemsRemaining = value; }

    /** Seconds that the queue still takes. */
    uint queueTimeRemaining() const { return m_queueTimeRemaining; }
    void setQueueTimeRemaining(uint value) { m_queueTimeRemaining = value; }

    // What the zone would do now if it were asked to.

    /** Whether it would go back to the previous track. */
    bool isPreviousAllowed() const { return m_isPreviousAllowed; }
    void setIsPreviousAllowed(bool value) { m_isPreviousAllowed = value; }

    /** Whether it would go on to the next track. */
    bool isNextAllowed() const { return m_isNextAllowed; }
    void setIsNextAllowed(bool value) { m_isNextAllowed = value; }

    /** Whether it would pause. */
    bool isPauseAllowed() const { return m_isPauseAllowed; }
    void setIsPauseAllowed(bool value) { m_isPauseAllowed = value; }

    /** Whether it would play. */
    bool isPlayAllowed() const { return m_isPlayAllowed; }
    void setIsPlayAllowed(bool value) { m_isPlayAllowed = value; }

    /** Whether it would move within the track. */
    bool isSeekAllowed() const { return m_isSeekAllowed; }
    void setIsSeekAllowed(bool value) { m_isSeekAllowed = value; }

    /** The display names of the outputs that make up the zone, in the order published. */
    QStringList outputs() const { return m_outputs; }
    /**
     * Replaces the outputs by the "display_name" of each element of the JSON array @p json; an
     * element without one counts as an empty name, anything that is not an array empties the list.
     * No signal of the zone tells of it.
     */
    void setOutputs(const QByteArray &json);
    /** Tells of outputs that have changed; lives as long as the zone. */
    const ChangeNotifier *outputsNotifier() const { return &m_outputsNotifier; }

signals:
    /** The id, the name or the state has changed. */
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
    ChangeNotifier m_outputsNotifier;
};
