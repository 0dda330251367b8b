// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

/** The clock that is the same in every process. */
using MonotonicClock = std::chrono::steady_clock;

inline double inMilliseconds(MonotonicClock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}
