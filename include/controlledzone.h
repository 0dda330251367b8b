// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class Player;
class RoonZones;

/**
 * Tells the scene which zone its commands go to, by the only thing that distinguishes zones, the
 * id, and whether what the player shows belongs to that zone.
 *
 * The names that the player shows are not enough: a zone that is created anew has another id under
 * the same name, and the list of zones can put a group in its place before the group has said a
 * word. What a finger has begun must not reach another zone then. Until the next zone message the
 * player goes on showing the previous zone, so nothing may be chosen from that zone's range either.
 * While the zone has no volume, a change may be noticed only with the next list of zones. Lives in
 * the GUI thread, may be destroyed at any moment.
 */
class ControlledZone : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString zoneId READ zoneId NOTIFY zoneIdChanged)
    Q_PROPERTY(bool shown READ isShown NOTIFY shownChanged)

public:
    /** Watches the program's own player and zones. */
    explicit ControlledZone(QObject *parent = nullptr);
    /** Watches @p player and @p zones, which must outlive it. */
    ControlledZone(const Player *player, const RoonZones *zones, QObject *parent = nullptr);

    /** The id of the zone that a command of the player would go to now; empty without one. */
    QString zoneId() const { return m_zoneId; }

    /**
     * Whether the player has copied this zone; if the zone has a volume, the player's volume and
     * limits are then this zone's.
     */
    bool isShown() const { return m_shown; }

signals:
    // Emitted on a change only, when both properties already have their new values.
    void zoneIdChanged();
    void shownChanged();

private:
    void look();

    const Player *m_player;
    const RoonZones *m_zones;
    QString m_zoneId;
    bool m_shown = false;
};
