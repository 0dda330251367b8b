// SPDX-License-Identifier: GPL-3.0-or-later
#include "systemdwatchdog.h"

#include <QDebug>

#include <systemd/sd-daemon.h>

namespace {

constexpr unsigned long KeepAliveMs = 2800;

void logStart()
{
    qDebug() << "SystemdWatchdog::WorkerThread::run()";
}

void logPing()
{
    qDebug() << "SystemdWatchdog::WorkerThread::PING";
}

} // namespace

void SystemdWatchdog::WorkerThread::run()
{
    // Termination may only hit where no lock is held. Cancelled inside the logging, the thread
    // would take its locks with it and the main thread's next log line would never return. The
    // sleep holds none, nor does sending, which waits for as long as the service manager does not
    // read; cut short it leaves a socket behind, which ends with the process.
    setTerminationEnabled(false);
    logStart();
    for (;;) {
        logPing();
        setTerminationEnabled(true);
        SystemdWatchdog::notify(QStringLiteral("WATCHDOG=1"));
        msleep(KeepAliveMs);
        setTerminationEnabled(false);
    }
}

SystemdWatchdog *SystemdWatchdog::instance()
{
    static SystemdWatchdog *const theInstance = new SystemdWatchdog;
    return theInstance;
}

SystemdWatchdog::SystemdWatchdog(QObject *parent)
    : QObject(parent)
    , m_worker(new WorkerThread)
{
    qDebug().noquote().nospace() << "SystemdWatchdog::constructor in thread "
                                 << QThread::currentThreadId();
    m_worker->setObjectName(QStringLiteral("watchdog"));
}

SystemdWatchdog::~SystemdWatchdog()
{
    qDebug() << "SystemdWatchdog::destructor";
    m_worker->terminate();
    m_worker->wait();
    delete m_worker;
}

void SystemdWatchdog::notify(const QString &state)
{
    sd_notify(0, state.toLatin1().constData());
}

void SystemdWatchdog::notifyReady()
{
    qDebug() << "SystemdWatchdog::notifyReady()";
    notify(QStringLiteral("READY=1"));
    m_worker->start();
}
