// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/process/process.h"

/**
 * The real simulator, run by a test, with what it prints.  It runs in the test's own environment;
 * destroying the object kills it.
 */
class SimulatorProgram : public QObject {
    Q_OBJECT

public:
    explicit SimulatorProgram(QObject *parent = nullptr);
    /** Prints what the simulator has printed when the test has failed. */
    ~SimulatorProgram() override;

    /** Starts it without waiting for anything it does; false when it cannot be run. */
    bool start(const QStringList &arguments = {});
    /** start(), and waits until it has reached the broker. */
    bool startAndWait(const QStringList &arguments = {});

    bool isRunning() const { return m_process.isRunning(); }
    void sendSignal(int number) { m_process.sendSignal(number); }
    bool waitForExit() { return m_process.waitForExit(); }
    /** See Process::exitStatus(). */
    int exitStatus() const { return m_process.exitStatus(); }
    /** Sends SIGTERM and waits for the end; true when it ended with status 0. */
    bool stop();

    /** What it has printed, standard output and standard error together, line by line. */
    QStringList lines() const;
    int count(const QString &line) const;
    /** Waits until a line begins like this; false, with a message, when none comes. */
    bool waitForLine(const QString &beginning);

private:
    bool printed(const QString &beginning) const;

    Process m_process;
};
