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
    /** Sends "WATCHDOG=1" for ever; terminated from outside, while it sleeps. */
    class WorkerThread : public QThread {
    protected:
        void run() override;
    };

    static SystemdWatchdog *instance();

    explicit SystemdWatchdog(QObject *parent = nullptr);
    ~SystemdWatchdog() override;

    /** Sends @p state (Latin-1) to the service manager; without a notification socket nothing
     * happens. */
    static void notify(const QString &state);

public slots:
    /** Sends "READY=1" and starts the keep-alive. To be called once, when the scene is there. */
    void notifyReady();

private:
    WorkerThread *m_worker;
};
