// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

/** The time now on the monotonic clock that all processes share; a number that JSON can hold. */
inline double monotonicNanoseconds()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<double>(std::chrono::nanoseconds(now).count());
}
