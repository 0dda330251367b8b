// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/** The topics on which the appliance's services and its display speak to each other. */
namespace Topics {

inline QString core(const char *key)
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Roon/") + QLatin1String(key);
}

inline QString availableZones()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Zones/available");
}

inline QString zone(const QString &id, const QByteArray &key)
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Zones/") + id
        + QLatin1Char('/') + QString::fromLatin1(key);
}

inline QString connected()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/connected");
}

inline QString spotify(const char *key)
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/spotify/") + QLatin1String(key);
}

inline QString state(const char *key)
{
    return QStringLiteral("Velunor/State/v1/") + QLatin1String(key);
}

inline QString settings(const char *key)
{
    return QStringLiteral("Velunor/Settings/v2/") + QLatin1String(key);
}

inline QString command()
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/Control/command");
}

/** What the display reports about itself: "zone", "idle" and "brightness" come below it. */
inline QString display()
{
    return QStringLiteral("Velunor/touch_ui/v3/Display/");
}

/** The simulator's own: faults to make while it runs. */
inline QString fault()
{
    return QStringLiteral("velunor-simulator/fault");
}

} // namespace Topics
