// SPDX-License-Identifier: GPL-3.0-or-later
#include "controlledzone.h"

#include "player.h"
#include "roonzones.h"
#include "storeifchanged.h"

ControlledZone::ControlledZone(QObject *parent)
    : ControlledZone(Player::instance(), RoonZones::instance(), parent)
{
}

ControlledZone::ControlledZone(const Player *player, const RoonZones *zones, QObject *parent)
    : QObject(parent)
    , m_player(player)
    , m_zones(zones)
{
    look();
    connect(zones, &RoonZones::zonesChanged, this, &ControlledZone::look);
    connect(player, &Player::wantedZoneChanged, this, &ControlledZone::look);
    // No signal tells of the members of a group, nor of the zone that the player has copied. But
    // after every message of any zone the player notifies of the limits, changed or not, while the
    // controlled zone has a volume. Without one there is nothing to be chosen.
    connect(player, &Player::limitSoftVolumeChanged, this, &ControlledZone::look);
    connect(player, &Player::volumeAvailableChanged, this, &ControlledZone::look);
}

void ControlledZone::look()
{
    const bool otherZone
        = storeIfChanged(m_zoneId, m_zones->idByDisplayName(m_player->wantedZone()));
    // A zone that was gone and is listed again is not known until it speaks: what the player shows
    // is from before.
    const bool otherShown = storeIfChanged(
        m_shown, m_zones->contains(m_zoneId) && m_player->copiedZoneId() == m_zoneId);
    if (otherZone)
        emit zoneIdChanged();
    if (otherShown)
        emit shownChanged();
}
