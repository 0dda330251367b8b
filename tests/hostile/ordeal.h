// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/appliance.h"
#include "testkit/pagenames.h"
#include "testkit/waiting.h"

#include <QTest>

#include <memory>

/** What a situation may cost, in MiB beyond what the program took when it began. */
struct Bound {
    int peakMiB; ///< resident memory at its highest
    int keptMiB; ///< memory of its own, not of files, when the situation is over
};

/**
 * The base of tests that give the program hostile surroundings, and the one place that says what it
 * means to come through them: it answers touches in time, on the page that the situation calls for,
 * its memory stays within a bound, and it ends in time and with status 0.
 *
 * Each test function has an appliance of its own. What was measured is printed.
 */
class Ordeal : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

protected:
    Appliance &house() { return *m_appliance; }
    Program &program() { return m_appliance->program; }
    Probe &probe() { return m_appliance->program.probe(); }

    /** The whole appliance, with the player on view; the situation begins. */
    bool startPlayer();
    /**
     * The program alone, with whatever is there, with this page on view after the welcome; the
     * situation begins.
     */
    bool startProgram(const QString &page);
    /** Memory is counted from here on; for situations that need more than one start. */
    void begin();

    /**
     * By touch from this page, which is on view, to the clock, into the dark, and back; each touch
     * is answered in time. False, with a message, when it is not.
     */
    bool answersTouches(const QString &page);
    /** Touches, then memory, then the end. False, with a message, at the first that fails. */
    bool comesThrough(const QString &page, Bound bound);
    /** Only the end. */
    bool endsInTime(int number = SIGTERM);

    /** Of a situation that brings nothing to be kept: what touches and their pages leave behind. */
    static constexpr Bound UsualBound { 12, 8 };
    /** On the busiest machine, with sanitizers; on a quiet one an answer takes a few frames. */
    static constexpr int TouchLimitMs = 10000;
    /** Below what the service allows before it kills; a quiet machine needs a tenth of it. */
    static constexpr int EndLimitMs = 4500;

private:
    bool touchLeadsTo(const Probe::Target &item, const QString &page);
    bool memoryIsWithin(Bound bound);

    std::unique_ptr<Appliance> m_appliance;
    qint64 m_residentKiB = 0;
    qint64 m_anonymousKiB = 0;
    qint64 m_longestTouchMs = 0;
};
