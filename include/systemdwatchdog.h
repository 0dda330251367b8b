// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QThread>

/**
 * Tells the service manager that start-up has succeeded, and from then on keeps its watchdog fed.
 *
 * The keep-alive comes from a thread of its own, every 2.8 seconds, whatever the main thread does;
 * the service's watchdog time-out has to be longer. Outside a notify-type service nothing is sent.
 * Created and deleted on the main thread.
 */
class SystemdWatchdog : public QObject {
    Q_OBJECT

public:
    /** Sends "WATCHDOG=1" until it is terminated from outside, while it sends or sleeps. */
    class WorkerThread : public QThread {
    protected:
        void run() override;
    };

    /** The one object, made by the first call. Deleted at quit. */
    static SystemdWatchdog *instance();

    /** Sends nothing before notifyReady(). */
    explicit SystemdWatchdog(QObject *parent = nullptr);
    /** Ends the keep-alive, without a message to the service manager. */
    ~SystemdWatchdog() override;

    /** Sends @p state as Latin-1 to the service manager, if there is one. Any thread. */
    static void notify(const QString &state);

public slots:
    /** Sends "READY=1" and starts the keep-alive. To be called once, when the scene is loaded. */
    void notifyReady();

private:
    WorkerThread *m_worker;
};
