// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/** What the scene calls its pages; for Program::waitForPage() and Probe::alive(). */
namespace PageNames {

inline const QString Welcome = "Welcome";
inline const QString Player = "RoonPlayerWindow2";
inline const QString Settings = "SettingsWindow";
inline const QString Failure = "RoonConnectionFailure";
inline const QString ScreenSaver = "ScreenSaver";
inline const QString Clock = "Clock";
inline const QString NotFound = "RoonZoneNotFound";
inline const QString Update = "UpdateInstalling";

} // namespace PageNames
