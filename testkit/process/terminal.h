// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QProcessEnvironment>
#include <QStringList>

#include <sys/types.h>

/**
 * A terminal in which one command runs, as in a window on somebody's desk.
 *
 * The command is killed with the object, and what it has left running is not.
 */
class Terminal {
public:
    Terminal() = default;
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    /** Runs the command in that directory; false, with a message, when there is no terminal. */
    bool run(const QStringList &command, const QString &directory,
        const QProcessEnvironment &environment);

    /** What a person types; "\x03" is Ctrl-C, and a line ends with "\n". */
    void type(const QByteArray &text);
    /** Closes the window, and with it the terminal. */
    void close();

    /** All that was printed so far, with "\n" between the lines. */
    QByteArray printed();
    /** Waits until a text is printed; false, with a message, when it is not. */
    bool waitFor(const QByteArray &text);

    pid_t processId() const { return m_process; }
    /** Waits for the end of the command itself; false when it does not end. */
    bool waitForExit();
    /** How it ended: the exit status, or minus the signal's number. */
    int exitStatus() const { return m_status; }

private:
    bool hasEnded();

    int m_terminal = -1;
    pid_t m_process = -1;
    int m_status = 0;
    QByteArray m_printed;
};
