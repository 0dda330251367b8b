// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/services/topics.h"

/** What the topics begin with, for those that are put together from random parts. */
namespace TopicBegin {

inline const QString Core = Topics::core("");
inline const QString Zones = Topics::zone({}, {}).chopped(1);
inline const QString Spotify = Topics::spotify("");
inline const QString Settings = Topics::settings("");
inline const QString State = Topics::state("");

} // namespace TopicBegin
