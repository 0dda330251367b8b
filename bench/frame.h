// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "monotonicclock.h"

#include <QtGlobal>

/** A frame that a program has put on the screen. */
struct Frame {
    MonotonicClock::time_point time; ///< when all of it had been drawn
    quint64 picture;                 ///< equal for frames that look the same
};
