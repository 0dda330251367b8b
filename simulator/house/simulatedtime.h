// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <limits>

/** Simulated time in real milliseconds, for a timer; @p speed is above 0. */
inline int realMs(double simulatedMs, double speed)
{
    // At the slowest speeds that is more than the 24 days that a timer can be set to.
    constexpr double LongestMs = std::numeric_limits<int>::max();
    const double ms = simulatedMs / speed;
    return ms < LongestMs ? int(ms) : std::numeric_limits<int>::max();
}
