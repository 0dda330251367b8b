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
    , m_zoneId(zones->idByDisplayName(player->wantedZone()))
{
    connect(zones, &RoonZones::zonesChanged, this, &ControlledZone::look);
    connect(player, &Player::wantedZoneChanged, this, &ControlledZone::look);
    // A group's members are part of its zone, and no signal tells of them. But after every message
    // of a zone that has a volume the player notifies of the limits, changed or not.
    connect(player, &Player::limitSoftVolumeChanged, this, &ControlledZone::look);
}

void ControlledZone::look()
{
    if (storeIfChanged(m_zoneId, m_zones->idByDisplayName(m_player->wantedZone())))
        emit zoneIdChanged();
}
