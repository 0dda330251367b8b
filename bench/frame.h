// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <chrono>

/** A frame that a program has put on the screen. */
struct Frame {
    std::chrono::steady_clock::time_point time; ///< when all of it had been drawn
    quint64 picture;                            ///< equal for frames that look the same
};
