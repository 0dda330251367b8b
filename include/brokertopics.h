// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/**
 * The topics of the appliance that this program subscribes to and publishes on.  The levels below a
 * subscription are taken apart by Mqtt::processMessageApi().
 */
namespace BrokerTopics {

// Subscribed to.
inline QString settings()
{
    return QStringLiteral("Velunor/Settings/v2/#");
}

inline QString state()
{
    return QStringLiteral("Velunor/State/v1/#");
}

inline QString core()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Roon/#");
}

inline QString zones()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Zones/#");
}

inline QString remoteConnected()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/connected");
}

inline QString spotify()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/spotify/#");
}

/** Published on as well: the zone's commands leave here, and come back. */
inline QString command()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/Control/command");
}

// Published on.
inline QString displayZone()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/zone");
}

inline QString displayIdle()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/idle");
}

inline QString displayBrightness()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/brightness");
}

} // namespace BrokerTopics
