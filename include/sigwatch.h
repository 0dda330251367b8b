// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class UnixSignalWatcherPrivate;

/**
 * Turns Unix signals into a Qt signal on the main thread, so that SIGINT and SIGTERM end the event
 * loop instead of killing the process in the middle of its work.
 *
 * The asynchronous handler only writes the number into a socket; the event loop reads it back.
 * Handlers stay installed after the watcher has gone.
 */
class UnixSignalWatcher : public QObject {
    Q_OBJECT

public:
    /** Watches nothing yet. The first one makes the socket pair that all of them share. */
    explicit UnixSignalWatcher(QObject *parent = nullptr);
    /** A watched signal has no effect from then on, unless another watcher reads it. */
    ~UnixSignalWatcher() override;

    /**
     * Starts delivering @p signal (a number as in <signal.h>). Asking twice changes nothing; a
     * signal that cannot be caught is logged at debug level and keeps its default handling. So does
     * every signal if the socket pair could not be made: caught, it would be lost.
     */
    void watchForSignal(int signal);

signals:
    /**
     * Emitted once for each delivered signal, in the order in which they came. When the event loop
     * does not keep up with a flood, what the socket cannot hold is dropped.
     */
    void unixSignal(int signal);

private:
    Q_DECLARE_PRIVATE(UnixSignalWatcher)
    Q_DISABLE_COPY(UnixSignalWatcher)
    // Reached by its name in the meta-object; the private part connects to its own function.
    Q_PRIVATE_SLOT(d_func(), void _q_onNotify(int))

    UnixSignalWatcherPrivate *const d_ptr;
};
