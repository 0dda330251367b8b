// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class RoonZone;

/**
 * The one zone that this display controls, as the scene sees it, and the commands that the scene
 * gives it.
 *
 * update() copies the zone's state from the zone collection after every zone message. A command
 * goes out as one message and changes nothing here: the new state comes back as zone messages. The
 * properties can be written by the scene; that publishes nothing, and notifies only on a change
 * except where noted. Main thread only.
 */
class Player : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString roonState READ roonState WRITE setRoonState NOTIFY roonStateChanged)
    Q_PROPERTY(QString song READ song WRITE setSong NOTIFY songChanged)
    Q_PROPERTY(QString artist READ artist WRITE setArtist NOTIFY artistChanged)
    Q_PROPERTY(QString album READ album WRITE setAlbum NOTIFY albumChanged)
    Q_PROPERTY(QString imageKey READ imageKey WRITE setImageKey NOTIFY imageKeyChanged)
    Q_PROPERTY(bool remoteConnected READ remoteConnected WRITE setRemoteConnected NOTIFY
            remoteConnectionChanged)
    Q_PROPERTY(uint seekPosition READ seekPosition WRITE setSeekPosition NOTIFY seekPositionChanged)
    Q_PROPERTY(bool autoRadio READ autoRadio WRITE setAutoRadio NOTIFY autoRadioChanged)
    Q_PROPERTY(QString loop READ loop WRITE setLoop NOTIFY loopChanged)
    Q_PROPERTY(bool shuffle READ shuffle WRITE setShuffle NOTIFY shuffleChanged)
    Q_PROPERTY(uint length READ length WRITE setLength NOTIFY lengthChanged)
    Q_PROPERTY(QString zone READ zone WRITE setZone NOTIFY zoneChanged)
    Q_PROPERTY(QString wantedZone READ wantedZone WRITE setWantedZone NOTIFY wantedZoneChanged)
    Q_PROPERTY(QString time READ time NOTIFY timeChanged)
    Q_PROPERTY(bool volumeAvailable READ volumeAvailable WRITE setVolumeAvailable NOTIFY
            volumeAvailableChanged)
    Q_PROPERTY(float volume READ volume WRITE setVolume NOTIFY volumeChanged)
    Q_PROPERTY(float minVolume READ minVolume WRITE setMinVolume NOTIFY minVolumeChanged)
    Q_PROPERTY(float maxVolume READ maxVolume WRITE setMaxVolume NOTIFY maxVolumeChanged)
    Q_PROPERTY(float limitMinVolume READ limitMinVolume WRITE setLimitMinVolume NOTIFY
            limitMinVolumeChanged)
    Q_PROPERTY(float limitMaxVolume READ limitMaxVolume WRITE setLimitMaxVolume NOTIFY
            limitMaxVolumeChanged)
    Q_PROPERTY(float limitSoftVolume READ limitSoftVolume WRITE setLimitSoftVolume NOTIFY
            limitSoftVolumeChanged)
    Q_PROPERTY(float volumeStep READ volumeStep WRITE setVolumeStep NOTIFY volumeStepChanged)
    Q_PROPERTY(float volumeMuted READ volumeMuted WRITE setVolumeMuted NOTIFY volumeMuteChanged)
    Q_PROPERTY(uint volumeDisplayPrecision READ volumeDisplayPrecision CONSTANT)
    Q_PROPERTY(QString bigImageUrl READ bigImageUrl)
    Q_PROPERTY(QString seekPositionText READ seekPositionText NOTIFY seekPositionChanged)
    Q_PROPERTY(QString lengthText READ lengthText NOTIFY lengthChanged)
    Q_PROPERTY(uint queueItemsRemaining READ queueItemsRemaining WRITE setQueueItemsRemaining NOTIFY
            queueItemsRemainingChanged)
    Q_PROPERTY(bool prevAllowed READ prevAllowed WRITE setPrevAllowed NOTIFY prevAllowedChanged)
    Q_PROPERTY(bool nextAllowed READ nextAllowed WRITE setNextAllowed NOTIFY nextAllowedChanged)
    Q_PROPERTY(bool pauseAllowed READ pauseAllowed WRITE setPauseAllowed NOTIFY pauseAllowedChanged)
    Q_PROPERTY(bool playAllowed READ playAllowed WRITE setPlayAllowed NOTIFY playAllowedChanged)
    Q_PROPERTY(bool seekAllowed READ seekAllowed WRITE setSeekAllowed NOTIFY seekAllowedChanged)

public:
    static Player *instance();

    explicit Player(QObject *parent = nullptr);

    /** Copies the wanted zone's state, if there is such a zone, and has the navigation look at it
     * afterwards. */
    void update();

    /** The id of the zone whose state was copied last; empty before the first copy. For this
     * program's own classes, not for the scene. */
    QString copiedZoneId() const { return m_copiedZoneId; }

    /** Address of the cover art in the size of the cover on the player screen. */
    QString imageUrl() const;

    /** State text of the zone, for example "playing" or "paused"; "init" until a zone has spoken.
     */
    QString roonState() const { return m_roonState; }
    /** Keeps the state it replaces, see previousRoonState(). */
    void setRoonState(const QString &value);
    /** The roonState() before its last change. */
    QString previousRoonState() const { return m_previousRoonState; }

    /** Cut to 38 characters and "..." while scrolling is off. */
    QString song() const;
    void setSong(const QString &value);

    /** Cut to 30 characters and "..." while scrolling is off. */
    QString artist() const;
    void setArtist(const QString &value);

    /** Cut to 24 characters and "..." while scrolling is off. */
    QString album() const;
    void setAlbum(const QString &value);

    /** Key of the cover art at the core's image service; keeps the last one when a track has none.
     */
    QString imageKey() const { return m_imageKey; }
    void setImageKey(const QString &value);

    /** Whether the remote-control service is there, as far as is known. */
    bool remoteConnected() const { return m_remoteConnected; }
    void setRemoteConnected(bool value);

    /** Seconds since the track began. */
    uint seekPosition() const { return m_seekPosition; }
    void setSeekPosition(uint value);

    bool autoRadio() const { return m_autoRadio; }
    void setAutoRadio(bool value);

    /** "disabled", "loop" or "loop_one". */
    QString loop() const { return m_loop; }
    void setLoop(const QString &value);

    bool shuffle() const { return m_shuffle; }
    void setShuffle(bool value);

    /** Seconds; 0 when unknown. */
    uint length() const { return m_length; }
    void setLength(uint value);

    /** Display name of the zone that was found, "UNKNOWN" without one. */
    QString zone() const { return m_zone; }
    void setZone(const QString &value);

    /** Display name of the zone to control. */
    QString wantedZone() const { return m_wantedZone; }
    void setWantedZone(const QString &value);

    /** The local time, "H:mm:ss" or "h:mm:ss a"; built on each read. */
    QString time() const;

    /** Whether the zone has a volume at all. */
    bool volumeAvailable() const { return m_volumeAvailable; }
    void setVolumeAvailable(bool value);

    /** In the zone's own units. */
    float volume() const { return m_volume; }
    /** Ignores a change of 0.1 or less. */
    void setVolume(float value);

    float minVolume() const { return m_minVolume; }
    void setMinVolume(float value);

    float maxVolume() const { return m_maxVolume; }
    void setMaxVolume(float value);

    // The limits are 0 before the first copy, and no numbers while the zone that was copied has not
    // told them. While a zone has no volume, those of the zone before stay.
    float limitMinVolume() const { return m_limitMinVolume; }
    void setLimitMinVolume(float value);

    float limitMaxVolume() const { return m_limitMaxVolume; }
    void setLimitMaxVolume(float value);

    float limitSoftVolume() const { return m_limitSoftVolume; }
    void setLimitSoftVolume(float value);

    /** The smallest volume change. */
    float volumeStep() const { return m_volumeStep; }
    /** Notifies on every call; a step between 0 and 1 makes the screen show one decimal. */
    void setVolumeStep(float step);

    // Deliberate: a flag inside, a number outside; the scene sees 0 or 1.
    float volumeMuted() const { return m_volumeMuted ? 1.0f : 0.0f; }
    /** Muted unless 0. */
    void setVolumeMuted(float muted);

    /** Decimals to show for the volume, 0 or 1. Deliberate: constant for the scene, which re-reads
     * it. */
    uint volumeDisplayPrecision() const { return m_volumeDisplayPrecision; }

    /** Address of the cover art in a size that fills a screen; built on each read. */
    QString bigImageUrl() const;

    /** seekPosition() as minutes and seconds; never folded into hours. */
    QString seekPositionText() const;

    /** length() as minutes and seconds; never folded into hours. */
    QString lengthText() const;

    uint queueItemsRemaining() const { return m_queueItemsRemaining; }
    void setQueueItemsRemaining(uint value);

    bool prevAllowed() const { return m_prevAllowed; }
    void setPrevAllowed(bool value);

    bool nextAllowed() const { return m_nextAllowed; }
    void setNextAllowed(bool value);

    bool pauseAllowed() const { return m_pauseAllowed; }
    void setPauseAllowed(bool value);

    bool playAllowed() const { return m_playAllowed; }
    void setPlayAllowed(bool value);

    bool seekAllowed() const { return m_seekAllowed; }
    void setSeekAllowed(bool value);

public slots:
    // Commands to the wanted zone; without such a zone nothing is sent and nothing is logged.
    void playPause();
    void prev();
    void next();
    void clickedRadioButton();
    void clickedShuffleButton();
    /** Asks for the loop mode after the present one: "disabled", "loop", "loop_one", "disabled". */
    void clickedLoopButton();
    /** Asks for the volume @p value; one equal to the last that was asked for here is not sent
     * again. */
    void movedVolumeSlider(float value);

    void timeFormatChanged(bool is24Hours);
    /** Has the scene read song, album and artist again, which are cut or not by this setting. */
    void scrollingChanged(bool scrolling);
    void connectionStateChanged(bool up);

    void commandVolumeDown();
    void commandVolumeUp();

    /** Makes @p name the wanted zone, and announces it. */
    void selectZone(QString name);
    /** Has the appliance install the available update. */
    void installUpdate();
    /** Announces the wanted zone to the broker. */
    void mqttConnected();

signals:
    // Deliberate: timeChanged(), playPausePressed(), prevPressed(), nextPressed() and
    // zoneMenuListChanged() are there for the scene and are never emitted here.
    void roonStateChanged();
    void songChanged();
    void artistChanged();
    void albumChanged();
    void imageKeyChanged();
    void timeChanged();
    void lengthChanged();
    void volumeAvailableChanged();
    void volumeChanged();
    void minVolumeChanged();
    void maxVolumeChanged();
    void limitMinVolumeChanged();
    void limitMaxVolumeChanged();
    void limitSoftVolumeChanged();
    void volumeStepChanged();
    void volumeMuteChanged();
    void playPausePressed();
    void prevPressed();
    void nextPressed();
    void remoteConnectionChanged();
    void seekPositionChanged();
    void zoneChanged();
    void wantedZoneChanged();
    void autoRadioChanged();
    void shuffleChanged();
    void loopChanged();
    void queueItemsRemainingChanged();
    void prevAllowedChanged();
    void nextAllowedChanged();
    void pauseAllowedChanged();
    void playAllowedChanged();
    void seekAllowedChanged();
    void zoneMenuListChanged();

private:
    QString wantedZoneId() const;
    QString shortened(const QString &text, int limit) const;
    void copyVolume(const RoonZone &zone);
    void announceWantedZone() const;
    void sendCommand(const QString &id, const QString &command,
        const QString &arguments = QString(), bool cache = false) const;
    void sendRelativeVolume(const QString &id, float change) const;

    QString m_copiedZoneId;
    QString m_previousRoonState = QStringLiteral("init");
    QString m_roonState = QStringLiteral("init");
    QString m_song;
    QString m_artist;
    QString m_album;
    QString m_imageKey;
    QString m_wantedZone;
    QString m_zone = QStringLiteral("UNKNOWN");
    bool m_use24HourClock = true;
    bool m_remoteConnected = true;
    uint m_seekPosition = 0;
    uint m_length = 0;
    bool m_autoRadio = false;
    bool m_shuffle = false;
    QString m_loop;
    float m_volume = 0.0f;
    float m_minVolume = 0.0f;
    float m_maxVolume = 0.0f;
    float m_limitMinVolume = 0.0f;
    float m_limitMaxVolume = 0.0f;
    float m_limitSoftVolume = 0.0f;
    float m_volumeStep = 0.0f;
    bool m_volumeMuted = false;
    bool m_volumeAvailable = false;
    uint m_queueItemsRemaining = 0;
    bool m_prevAllowed = false;
    bool m_nextAllowed = false;
    bool m_pauseAllowed = false;
    bool m_playAllowed = false;
    bool m_seekAllowed = false;
    uint m_volumeDisplayPrecision = 0;
};
