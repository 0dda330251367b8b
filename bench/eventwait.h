// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QCoreApplication>
#include <QTimer>

/** How long a measurement waits for what must happen before it gives up. */
constexpr int PatienceForEventMs = 60000;

/**
 * Sleeps in the event loop until the condition holds; false when it does not hold within the time.
 * Unlike the tests' waiting, this is not a poll: the condition is looked at after every event and
 * never later, so that what is timed is not rounded to a step of the waiter's own.
 */
template <typename Condition>
bool waitForEvent(const Condition &condition, int milliseconds = PatienceForEventMs)
{
    QTimer patience;
    patience.setSingleShot(true);
    patience.start(milliseconds);
    while (!condition()) {
        if (!patience.isActive())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

/** Serves events for a time: the length of a measurement, or the distance between two samples. */
inline void serveEvents(int milliseconds)
{
    waitForEvent([] { return false; }, milliseconds);
}
