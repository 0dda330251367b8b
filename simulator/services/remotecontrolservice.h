// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/house/zonesimulation.h"
#include "simulator/services/remotecommand.h"

#include <QHash>
#include <QObject>
#include <QRandomGenerator>

/**
 * Stands in for the service that speaks to the music server: facts, zones, the listener's commands.
 *
 * Publishes nothing until start(). Zones are addressed by their own names, even while they belong
 * to a group; operations on a zone return false when there is none of that name.
 */
class RemoteControlService : public QObject {
    Q_OBJECT

public:
    /** All zones of the library, the first one under the name @p mainZone. */
    RemoteControlService(const QString &mainZone, quint32 seed, QObject *parent = nullptr);

    /** Publishes everything; @p serverUrl is the address of the image service, "HOST:PORT". */
    void start(const QString &serverUrl);

    /** The zone of the appliance itself. */
    ZoneSimulation *mainZone() const { return m_zones.first(); }
    /** By its own name, even a follower or one that has gone; the main one for an empty name. */
    ZoneSimulation *zone(const QString &name) const;
    /** A zone's own name for its id; the id itself when there is none. */
    QString nameOf(const QString &id) const;

    /** False for a zone that is switched off or follows another one. */
    bool canPlay(ZoneSimulation *zone) const;

    /** The server is on the network. Without it, there are no zones and time stands still. */
    void setCoreDetected(bool detected);
    /** This service has its connection to the server. */
    void setConnected(bool connected);
    /** A zone that is switched off is not in the list and does not play. */
    bool setPresent(const QString &name, bool present);
    /** An empty new name stands for the zone's first one; false when another zone has the name. */
    bool rename(const QString &name, const QString &newName);
    /** The first plays, the others follow; at least two, none twice. */
    bool group(const QStringList &names);
    /** Dissolves the group to which a zone belongs, leader or follower; false without one. */
    bool ungroup(const QString &name);

    /**
     * Carries out a command. False, with the reason and with nothing changed, when there is no such
     * zone, or it cannot do that now.
     */
    bool obey(const RemoteCommand &command, QString *reason);

    /** True while time matters to any zone. */
    bool isPlaying() const;
    void advance(int milliseconds);

    /** Publishes the truth again, after something else was published in its place. */
    void republish();

signals:
    void publish(const QString &topic, const QByteArray &payload, bool retain);
    void playingChanged();
    /** One line for people: a track that began. */
    void told(const QString &line);

private:
    struct Status {
        bool present = true;
        ZoneSimulation *leader = nullptr; ///< null unless following another zone
        QVector<ZoneSimulation *> followers;
    };

    bool isAvailable(ZoneSimulation *zone) const;
    void publishCore();
    void publishConnected();
    void publishSpotify();
    /** Publishes the list and, of zones that are new in it, everything. */
    void updateAvailable();
    /** False when nobody follows. */
    bool dissolve(ZoneSimulation *leader);

    QRandomGenerator m_random;
    QVector<ZoneSimulation *> m_zones; // children
    QHash<ZoneSimulation *, Status> m_status;
    QVector<ZoneSimulation *> m_published; ///< the zones in the last list
    QString m_serverUrl;
    bool m_started = false;
    bool m_coreDetected = true;
    bool m_connected = true;
};
