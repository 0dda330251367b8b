// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QObject>

class QSocketNotifier;
class UnixSignalWatcher;

/** The working part of UnixSignalWatcher: a notifier on the socket pair and the watched numbers. */
class UnixSignalWatcherPrivate : public QObject {
    Q_OBJECT
    Q_DECLARE_PUBLIC(UnixSignalWatcher)

public:
    /** @p watcher owns it and emits for it. */
    explicit UnixSignalWatcherPrivate(UnixSignalWatcher *watcher);
    /** Stops reading; handlers and sockets stay. */
    ~UnixSignalWatcherPrivate() override;

    /** See UnixSignalWatcher::watchForSignal(). */
    void watchForSignal(int signal);

    /** Reads one signal number from @p socket and reports it; less than a whole one is dropped. */
    void _q_onNotify(int socket);

private:
    UnixSignalWatcher *const q_ptr;
    QSocketNotifier *m_notifier = nullptr; // null when the socket pair could not be made
    QList<int> m_watched;
};
