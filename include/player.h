// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>

class RoonZone;

/**
 * The one zone that this display controls, as the scene sees it, and the scene's commands to it.
 *
 * update() copies the zone's state from the zone collection after every zone message. A command
 * goes out as one message and changes nothing here: the new state comes back as zone messages. The
 * scene may write the properties; that publishes nothing, and notifies only on a change except
 * where noted. Before the first copy, numbers are 0, flags false and texts empty except where
 * noted. Main thread only.
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
    /** The one object, made by the first call; deleted with the scene's engine if used by it. */
    static Player *instance();

    /** Takes the wanted zone from the environment, and announces it once there is a broker. */
    explicit Player(QObject *parent = nullptr);

    /**
     * Copies the wanted zone's state and has the navigation look at it afterwards. Changes nothing
     * when there is no zone of that name; when it is listed but has not spoken yet, only zone()
     * changes, to "UNKNOWN".
     */
    void update();

    /** Id of the zone whose state was copied last; empty before that. Not for the scene. */
    QString copiedZoneId() const { return m_copiedZoneId; }

    /** Address of the cover art in the size of the player page; built on each call. */
    QString imageUrl() const;

    /** State of the zone, such as "playing" or "paused"; "init" before the first copy. */
    QString roonState() const { return m_roonState; }
    /** Keeps the state it replaces, see previousRoonState(). */
    void setRoonState(const QString &value);
    /** The roonState() before its last change; "init" before the first. */
    QString previousRoonState() const { return m_previousRoonState; }

    /** Title of the track; while scrolling is off, read as its first 38 characters and "...". */
    QString song() const;
    void setSong(const QString &value);

    /** Who performs it; while scrolling is off, read as the first 30 characters and "...". */
    QString artist() const;
    void setArtist(const QString &value);

    /** Title of the album; while scrolling is off, read as its first 24 characters and "...". */
    QString album() const;
    void setAlbum(const QString &value);

    /** Key of the cover art at the core's image service; a track without one keeps the last. */
    QString imageKey() const { return m_imageKey; }
    void setImageKey(const QString &value);

    /** Whether the remote-control service is there; true until the broker connection fails. */
    bool remoteConnected() const { return m_remoteConnected; }
    void setRemoteConnected(bool value);

    /** Seconds since the track began. */
    uint seekPosition() const { return m_seekPosition; }
    void setSeekPosition(uint value);

    /** Whether the core goes on with music of its own choice when the queue has ended. */
    bool autoRadio() const { return m_autoRadio; }
    void setAutoRadio(bool value);

    /** "disabled", "loop" or "loop_one"; any other text is kept as it comes. */
    QString loop() const { return m_loop; }
    void setLoop(const QString &value);

    /** Whether the queue is played in random order. */
    bool shuffle() const { return m_shuffle; }
    void setShuffle(bool value);

    /** Seconds that the track takes; 0 when unknown, as for a stream. */
    uint length() const { return m_length; }
    void setLength(uint value);

    /** Display name of the zone that was copied; "UNKNOWN" before the first copy, see update(). */
    QString zone() const { return m_zone; }
    void setZone(const QString &value);

    /** Display name of the zone to control; at first from the environment, or "Hugo2X". */
    QString wantedZone() const { return m_wantedZone; }
    /** Only stores and notifies; selectZone() also copies and announces the zone. */
    void setWantedZone(const QString &value);

    /** The local time, "H:mm:ss" or "h:mm:ss a" by the setting; built on each read. */
    QString time() const;

    /** Whether the zone has a volume at all. */
    bool volumeAvailable() const { return m_volumeAvailable; }
    void setVolumeAvailable(bool value);

    // The volume numbers are in the zone's own units, and stay as they are while it has no volume.

    /** The present volume. */
    float volume() const { return m_volume; }
    /** Ignores a change of 0.1 or less. */
    void setVolume(float value);

    /** Lower end of the zone's scale. */
    float minVolume() const { return m_minVolume; }
    void setMinVolume(float value);

    /** Upper end of the zone's scale. */
    float maxVolume() const { return m_maxVolume; }
    void setMaxVolume(float value);

    // The limits are NaN while the zone that was copied has not told them.

    /** The lowest volume that the zone accepts. */
    float limitMinVolume() const { return m_limitMinVolume; }
    void setLimitMinVolume(float value);

    /** The highest volume that the zone accepts. */
    float limitMaxVolume() const { return m_limitMaxVolume; }
    void setLimitMaxVolume(float value);

    /** The highest volume that the listener wants to reach from here. */
    float limitSoftVolume() const { return m_limitSoftVolume; }
    void setLimitSoftVolume(float value);

    /** The smallest volume change; 0 or less is kept as it comes. */
    float volumeStep() const { return m_volumeStep; }
    /** Notifies on every call; a step between 0 and 1 makes the scene show one decimal. */
    void setVolumeStep(float step);

    /** 1 while the zone is muted, else 0. Deliberate: a flag inside, a number outside. */
    float volumeMuted() const { return m_volumeMuted ? 1.0f : 0.0f; }
    /** Muted unless 0. */
    void setVolumeMuted(float muted);

    /** Decimals to show for the volume, 0 or 1. Deliberate: no signal, the scene reads it again. */
    uint volumeDisplayPrecision() const { return m_volumeDisplayPrecision; }

    /** Address of the cover art in a size that fills a screen; built on each read, no signal. */
    QString bigImageUrl() const;

    /** seekPosition() as minutes and seconds, "62:05" for more than an hour. */
    QString seekPositionText() const;

    /** length() as minutes and seconds, "62:05" for more than an hour. */
    QString lengthText() const;

    /** How many tracks the queue still holds, as the zone counts them. */
    uint queueItemsRemaining() const { return m_queueItemsRemaining; }
    void setQueueItemsRemaining(uint value);

    // What the zone would do now if it were asked to. Commands are sent in either case.

    /** Whether it would go back to the previous track. */
    bool prevAllowed() const { return m_prevAllowed; }
    void setPrevAllowed(bool value);

    /** Whether it would go on to the next track. */
    bool nextAllowed() const { return m_nextAllowed; }
    void setNextAllowed(bool value);

    /** Whether it would pause. */
    bool pauseAllowed() const { return m_pauseAllowed; }
    void setPauseAllowed(bool value);

    /** Whether it would play. */
    bool playAllowed() const { return m_playAllowed; }
    void setPlayAllowed(bool value);

    /** Whether it would move within the track; what cannot is stopped rather than paused. */
    bool seekAllowed() const { return m_seekAllowed; }
    void setSeekAllowed(bool value);

public slots:
    // Commands to the wanted zone; without such a zone nothing is sent and nothing is logged. No
    // answer is awaited.

    /** Asks to pause, stop or go on, whichever the zone can. */
    void playPause();
    /** Asks for the previous track. */
    void prev();
    /** Asks for the next track. */
    void next();
    /** Asks for the opposite of autoRadio(). */
    void clickedRadioButton();
    /** Asks for the opposite of shuffle(). */
    void clickedShuffleButton();
    /**
     * Asks for the mode that comes after loop() in the cycle of "disabled", "loop" and "loop_one";
     * for "disabled" after any other text.
     */
    void clickedLoopButton();
    /**
     * Asks for the volume @p value, rounded to one decimal and not clamped. One equal to the last
     * that was asked for here, of the same zone, is not sent again.
     */
    void movedVolumeSlider(float value);

    /** Chooses the format of time(); emits nothing. */
    void timeFormatChanged(bool is24Hours);
    /** Has the scene read song, album and artist again, which this setting has cut or not. */
    void scrollingChanged(bool scrolling);
    /** Sets remoteConnected(); called with false on each error of the broker connection. */
    void connectionStateChanged(bool up);

    // Commands as well.

    /** Asks for a volume lower by volumeStep(). */
    void commandVolumeDown();
    /** Asks for a volume higher by volumeStep(). */
    void commandVolumeUp();

    /** Makes @p name the wanted zone, copies that zone's state and announces the name. */
    void selectZone(QString name);
    /** Has the appliance install the available update; a failure is only logged. */
    void installUpdate();
    /** Announces the wanted zone to the broker, retained. */
    void mqttConnected();

signals:
    // Emitted when the property has taken another value, and not when an equal one was written;
    // exceptions stand beside the signal. Within update(), what is copied later may still be old
    // then. Deliberate: those that are never emitted are there for the scene.
    void roonStateChanged();
    void songChanged();   ///< also with the scrolling setting, which decides about cutting
    void artistChanged(); ///< likewise
    void albumChanged();  ///< likewise
    void imageKeyChanged();
    void timeChanged();   ///< never
    void lengthChanged(); ///< of lengthText as well
    void volumeAvailableChanged();
    void volumeChanged();          ///< not for a change of 0.1 or less
    void minVolumeChanged();       ///< also with each copy of a zone that has a volume
    void maxVolumeChanged();       ///< likewise
    void limitMinVolumeChanged();  ///< likewise
    void limitMaxVolumeChanged();  ///< likewise
    void limitSoftVolumeChanged(); ///< likewise
    void volumeStepChanged();      ///< also for an equal step
    void volumeMuteChanged();
    void playPausePressed();        ///< never
    void prevPressed();             ///< never
    void nextPressed();             ///< never
    void remoteConnectionChanged(); ///< also when update() sets the zone to "UNKNOWN"
    void seekPositionChanged();     ///< of seekPositionText as well
    void zoneChanged();             ///< not when update() sets it to "UNKNOWN"
    void wantedZoneChanged();       ///< by selectZone() always, after the announcement
    void autoRadioChanged();
    void shuffleChanged();
    void loopChanged();
    void queueItemsRemainingChanged();
    void prevAllowedChanged();
    void nextAllowedChanged();
    void pauseAllowedChanged();
    void playAllowedChanged();
    void seekAllowedChanged();
    void zoneMenuListChanged(); ///< never

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
