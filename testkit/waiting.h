// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QTest>

/**
 * How long a test waits for what must happen.  Far above any time seen, so that a loaded machine
 * fails nothing.
 */
constexpr int PatienceMs = 20000;

/** Runs the event loop until the condition holds; false when it does not hold within the time. */
template <typename Condition>
bool waitUntil(const Condition &condition, int milliseconds = PatienceMs)
{
    return QTest::qWaitFor(condition, milliseconds);
}
