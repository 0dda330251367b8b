// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>

/**
 * A child process whose standard error is collected line by line.
 *
 * The lines of a run that ended stay readable until the next start.  Destroying the object kills
 * the child.
 */
class Process : public QObject {
    Q_OBJECT

public:
    explicit Process(QObject *parent = nullptr);
    ~Process() override;

    /** Starts the program; false, with errorText() set, when it cannot be run. */
    bool start(const QString &program, const QStringList &arguments,
        const QProcessEnvironment &environment);

    bool isRunning() const { return m_process.state() == QProcess::Running; }
    qint64 processId() const { return m_process.processId(); }

    /** Sends a Unix signal. */
    void sendSignal(int number);

    /** Waits for the end; false when the process still runs after the time. */
    bool waitForExit();

    /**
     * How the last run ended: the exit status, or minus the signal's number.  Of no meaning while
     * it runs.
     */
    int exitStatus() const;

    /** The complete lines written so far in this run, in order, without their newlines; Latin-1. */
    const QStringList &lines() const { return m_lines; }
    QString errorText() const { return m_process.errorString(); }

signals:
    void lineWritten(const QString &line);
    void finished();

private:
    void readLines();

    QProcess m_process;
    QByteArray m_unfinishedLine;
    QStringList m_lines;
};
