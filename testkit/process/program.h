// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/probe/probe.h"
#include "testkit/process/loglines.h"
#include "testkit/process/process.h"

#include <QList>
#include <QProcessEnvironment>
#include <QTemporaryDir>

/**
 * The real program, unmodified, with its log and the way into its scene.
 *
 * Unless a test changes it, the program runs without a display (platform "offscreen", software
 * renderer), in a UTF-8 locale, with debug logging on and the probe loaded, in an environment that
 * is otherwise the test's own without any variable that the program or Qt reads.  The whole log is
 * printed when the object goes while its test has failed.
 */
class Program : public QObject {
    Q_OBJECT

public:
    explicit Program(QObject *parent = nullptr);
    ~Program() override;

    /**
     * To be called before start(), as are the next two: another program in the same surroundings.
     */
    void setExecutable(const QString &path) { m_executable = path; }
    void setEnvironment(const QString &name, const QString &value);
    void unsetEnvironment(const QString &name);
    /** To be called before start(): draws with OpenGL on the display of this name. */
    void drawOn(const QString &display);
    /** Has sanitizers, where there are any, get along with OpenGL's software driver. */
    static void allowDriver(QProcessEnvironment &environment);

    /** Starts the program without waiting for anything it does; false when it cannot be run. */
    bool start();
    /** start(), and waits until the event loop is entered. */
    bool startAndWait();

    bool isRunning() const { return m_process.isRunning(); }
    qint64 processId() const { return m_process.processId(); }
    void sendSignal(int number) { m_process.sendSignal(number); }
    bool waitForExit() { return m_process.waitForExit(); }
    /** See Process::exitStatus(). */
    int exitStatus() const { return m_process.exitStatus(); }
    /** Sends SIGTERM and waits for the end; true when the program ended with status 0. */
    bool stop();

    /** What the program has logged so far in this run. */
    const QList<LogLine> &log() const { return m_log; }
    /** How many lines there are: a position from which a test can look for what comes later. */
    int logSize() const { return m_log.size(); }
    /** How many lines from the position on match. */
    int count(const LogPattern &pattern, int from = 0) const;
    /** The position of the first line from the given one on that matches; -1 when there is none. */
    int position(const LogPattern &pattern, int from = 0) const;
    /**
     * Waits for a line, from the position on, that matches; false, with a message, when none comes.
     */
    bool waitForLine(const LogPattern &pattern, int from = 0);

    /**
     * True when nobody but the program itself has warned so far: neither Qt nor the scene.  Prints
     * the first such line otherwise.
     */
    bool isQuiet() const;

    /**
     * Prints the log from this position, where a test of several begins, when that test has failed.
     */
    void printLogOnFailure(int from) const;

    /**
     * Waits until the page of this name is shown, takes touches, and is the only one alive; false,
     * with a message, when it does not come to that.
     */
    bool waitForPage(const QString &name);

    /** The way into the scene; connected on first use. */
    Probe &probe() { return m_probe; }

private:
    QString m_executable;
    Process m_process;
    QList<LogLine> m_log;
    QTemporaryDir m_directory; // home, runtime directory and socket of the program
    QProcessEnvironment m_environment;
    Probe m_probe;
};
