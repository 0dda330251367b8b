// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/house/album.h"
#include "simulator/house/zonedescription.h"

#include <QObject>
#include <QRandomGenerator>
#include <QStringList>
#include <QVector>

/**
 * One playback zone: its queue, its position in it, its volume, and what of it is published.
 *
 * Time passes only through advance(). Every operation ends by reporting each published property
 * that it changed, once. What cannot be done (next on a radio, volume of a fixed zone) is refused
 * by returning false and changes nothing.
 */
class ZoneSimulation : public QObject {
    Q_OBJECT

public:
    /** A published property: the topic levels after the zone's id, and the value as text. */
    struct Property {
        QByteArray key;
        QByteArray value;
    };

    /** Nothing in the queue. @p random decides shuffling and radio; it must outlive the zone. */
    ZoneSimulation(
        const ZoneDescription &description, QRandomGenerator *random, QObject *parent = nullptr);

    QString id() const { return m_description.id; }
    /** The display name, without those of other zones that are grouped with it. */
    QString ownName() const { return m_description.name; }
    /** The own name before any renaming. */
    QString firstName() const { return m_firstName; }
    /** The published name: of a group, the members' names joined by " + ". */
    QString name() const;
    bool isPlaying() const { return m_state == State::Playing; }
    /** The song that is on; empty when the queue is empty. */
    QString song() const;
    /** What is on, in one line for people. */
    QString nowPlaying() const;
    double volume() const { return m_volume; }

    /** Everything published about the zone, in a fixed order. */
    QVector<Property> properties() const;
    /** Reports every property again, even the unchanged ones. */
    void republish();
    /** Reports the properties that have changed since they were reported last. */
    void reportChanges();

    // The next two report nothing: whoever calls them calls reportChanges(), once the list of zones
    // has the new name.
    void rename(const QString &name);
    /** The own names of the zones that follow this one; empty dissolves the group. */
    void setFollowers(const QStringList &names);

    /** Replaces the queue and stands, stopped, at its track with the given index (clamped). */
    void setQueue(const QVector<const Album *> &albums, int index = 0);
    bool play();
    bool pause();
    /** Stops and goes back to the beginning of the track. */
    bool stop();
    /** As one touch on the button: a radio is stopped, everything else pauses. */
    bool playPause();
    bool next();
    /** The previous track; the beginning of this one when it has been on for a while. */
    bool previous();
    /** Clamped to the track; false for a radio. */
    bool seek(int seconds);

    void setAutoRadio(bool on);
    void setShuffle(bool on);
    /** "disabled", "loop" and "loop_one". */
    static QStringList loopModes();
    /** One of loopModes(); false for anything else. */
    bool setLoop(const QString &mode);

    /** Clamped to the hard limits and rounded to a whole number of steps; false when fixed. */
    bool setVolume(double value);
    bool changeVolume(double by) { return setVolume(m_volume + by); }
    bool setMuted(bool muted);

    /** Lets simulated time pass; a paused or stopped zone does not notice. */
    void advance(int milliseconds);

signals:
    void propertyChanged(const QByteArray &key, const QByteArray &value);
    /** Another track is on, or a track began to play. */
    void trackStarted();
    void playingChanged();

private:
    enum class State { Stopped, Paused, Playing };
    struct Entry {
        const Album *album;
        const Track *track;
    };

    const Entry *current() const;
    bool isRadio() const;
    bool hasNext() const;
    qint64 lengthMs() const;
    int remainingSeconds() const;
    void fillQueue(const QVector<const Album *> &albums, int index);
    void setState(State state);
    void moveTo(int place);
    /** To the track after this one, or to other music when there is none. */
    void moveOn();
    void endOfTrack();
    void shuffleRest();

    ZoneDescription m_description;
    QString m_firstName;
    QRandomGenerator *m_random;
    QStringList m_followers;
    QVector<Entry> m_queue;
    QVector<int> m_order; ///< the queue's indices in the order of playing
    int m_place = 0;      ///< in m_order
    qint64 m_positionMs = 0;
    State m_state = State::Stopped;
    bool m_autoRadio = false;
    bool m_shuffle = false;
    QString m_loop;
    double m_volume = 0;
    bool m_muted = false;
    QVector<Property> m_reported;
};
