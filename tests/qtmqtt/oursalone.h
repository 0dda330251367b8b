// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtTest/QtTest>

// These tests are built against Qt's own module, too, where that is installed.  What is promised by
// our classes alone is marked: a test, or all of them from initTestCase(), by OURS_ALONE, a row or
// a line by a question for IsModule.  Everything unmarked holds for both.

#ifdef TOUCHUI_QTMQTT_MODULE
inline constexpr bool IsModule = true;
#else
inline constexpr bool IsModule = false;
#endif

#define OURS_ALONE(reason)                                                                         \
    do {                                                                                           \
        if (IsModule)                                                                              \
            QSKIP("ours alone: " reason);                                                          \
    } while (false)
