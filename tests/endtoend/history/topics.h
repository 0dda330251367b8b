// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/** Where the appliance's services publish what. */
namespace Topics {

inline const QString RemoteControl = QStringLiteral("Velunor/Controller/remote_control/v4/");
inline const QString Core = RemoteControl + QStringLiteral("roon/Roon/");
inline const QString Zones = RemoteControl + QStringLiteral("roon/Zones/");
inline const QString AvailableZones = Zones + QStringLiteral("available");
inline const QString Command = RemoteControl + QStringLiteral("Control/command");
inline const QString Spotify = RemoteControl + QStringLiteral("spotify/");
inline const QString Settings = QStringLiteral("Velunor/Settings/v2/");
inline const QString State = QStringLiteral("Velunor/State/v1/");

} // namespace Topics
