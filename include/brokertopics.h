// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/**
 * The topics of the appliance that this program subscribes to (at QoS 0) and publishes on (at QoS
 * 1). The levels below a subscription are taken apart by Mqtt::processMessageApi().
 */
namespace BrokerTopics {

// Subscribed to.

/** Display settings, one key each; Mqtt::updateSettings() knows the keys. */
inline QString settings()
{
    return QStringLiteral("Velunor/Settings/v2/#");
}

/** The appliance's condition, a property of VelunorState each. */
inline QString state()
{
    return QStringLiteral("Velunor/State/v1/#");
}

/** Facts of the Roon Core, a property of Roon each. */
inline QString core()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Roon/#");
}

/** The list of available zones, and below a zone's id the properties of that RoonZone. */
inline QString zones()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Zones/#");
}

/**
 * Whether the remote-control service has its connection. Deliberate: the dispatch looks for the
 * word one level higher, so what arrives here is logged as an unknown topic and dropped.
 */
inline QString remoteConnected()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/connected");
}

/** The Spotify state, a property of Spotify each. */
inline QString spotify()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/spotify/#");
}

/** Commands as JSON objects. The player's own leave here as well, not retained, and come back. */
inline QString command()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/Control/command");
}

// Published on.

/** The display name of the wanted zone, in the local encoding; retained. */
inline QString displayZone()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/zone");
}

/** "true" while the display is idle, "false" while it is in use; not retained. */
inline QString displayIdle()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/idle");
}

/** The brightness applied last, in the panel's own units, as a decimal number; retained. */
inline QString displayBrightness()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/brightness");
}

} // namespace BrokerTopics
