// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <limits>

/** Simulated time in real milliseconds, for a timer; @p speed is above 0. */
inline int realMs(double simulatedMs, double speed)
{
    // At the slowest speeds more than a timer can be set to, which is 24 days.
    constexpr double LongestMs = std::numeric_limits<int>::max();
    const double ms = simulatedMs / speed;
    return ms < LongestMs ? int(ms) : std::numeric_limits<int>::max();
}
