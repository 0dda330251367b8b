// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

/** What the kernel says of a running process. A number that it does not tell ends the program. */
namespace ProcessFigures {

/** Proportional set size in KiB: resident memory, with a share of what other processes use too. */
qint64 pssKiB(qint64 process);

/** Memory that belongs to the process alone, in KiB. */
qint64 privateKiB(qint64 process);

/**
 * The same without what comes from files, in KiB. Pages of files belong to the process alone only
 * as long as nobody else uses them.
 */
qint64 anonymousKiB(qint64 process);

/** Resident memory in KiB, shared or not: now, and at its highest since forgetPeak(). */
qint64 residentKiB(qint64 process);
qint64 peakKiB(qint64 process);
void forgetPeak(qint64 process);

/** How many descriptors are open. */
int openFiles(qint64 process);

/** How many threads are alive. */
int threads(qint64 process);

/** Processor time of all threads in milliseconds, including those that have ended. */
qint64 processorMs(qint64 process);

/** The same in nanoseconds, as the scheduler counts it. */
qint64 processorNs(qint64 process);

/** How often each thread that is alive has gone to sleep of its own accord, by number and name. */
QMap<QString, qint64> voluntarySwitches(qint64 process);

/** Waits until the process has used no processor time for a second; false when it never rests. */
bool waitUntilAtRest(qint64 process);

} // namespace ProcessFigures
