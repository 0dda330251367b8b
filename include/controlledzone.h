// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class Player;
class RoonZones;

/**
 * Tells the scene which zone its commands go to, by the only thing that tells zones apart: the id,
 * and whether what the player shows is that zone's.
 *
 * The names that the player shows are not enough: the zone gets another id without another name
 * when it is made anew, and the list of zones can put a group in its place before the group has
 * said a word. What a finger has begun must not reach another zone then. Until the next zone
 * message the player goes on showing the zone before, so nothing may be chosen from that zone's
 * range either. Lives in the GUI thread, may be destroyed at any moment.
 */
class ControlledZone : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString zoneId READ zoneId NOTIFY zoneIdChanged)
    Q_PROPERTY(bool shown READ isShown NOTIFY shownChanged)

public:
    explicit ControlledZone(QObject *parent = nullptr);
    ControlledZone(const Player *player, const RoonZones *zones, QObject *parent = nullptr);

    /** The id of the zone that a command of the player would go to now; empty without one. */
    QString zoneId() const { return m_zoneId; }

    /** Whether the player has copied this zone; its volume and limits are this zone's then, if it
     * has a volume. */
    bool isShown() const { return m_shown; }

signals:
    void zoneIdChanged();
    void shownChanged();

private:
    void look();

    const Player *m_player;
    const RoonZones *m_zones;
    QString m_zoneId;
    bool m_shown = false;
};
