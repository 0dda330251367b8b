// SPDX-License-Identifier: GPL-3.0-or-later
#include "sigwatch.h"

#include "sigwatch_p.h"

#include <QDebug>
#include <QSocketNotifier>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/socket.h>

namespace {

// One pair for the process, made by the first watcher. Never closed: a handler may run at any time.
int sockets[2] = { -1, -1 };

bool haveSockets()
{
    return sockets[0] >= 0 || ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) == 0;
}

// Asynchronous context: nothing but the write, and the interrupted code's errno left as it was.
// When the socket is full the signal is dropped, as the interrupted thread may be the reading one.
void handleSignal(int signal)
{
    const int interrupted = errno;
    const ssize_t written = ::send(sockets[0], &signal, sizeof signal, MSG_DONTWAIT);
    static_cast<void>(written);
    errno = interrupted;
}

} // namespace

UnixSignalWatcherPrivate::UnixSignalWatcherPrivate(UnixSignalWatcher *watcher)
    : q_ptr(watcher)
{
    if (!haveSockets()) {
        qDebug().noquote().nospace() << "UnixSignalWatcher: socketpair: " << std::strerror(errno);
        return;
    }
    m_notifier = new QSocketNotifier(sockets[1], QSocketNotifier::Read);
    connect(m_notifier, &QSocketNotifier::activated, this, &UnixSignalWatcherPrivate::_q_onNotify);
    m_notifier->setEnabled(true);
}

UnixSignalWatcherPrivate::~UnixSignalWatcherPrivate()
{
    delete m_notifier;
}

void UnixSignalWatcherPrivate::watchForSignal(int signal)
{
    if (m_watched.contains(signal)) {
        qDebug().noquote().nospace() << "Already watching for signal " << signal;
        return;
    }
    // A signal that nobody could be told of keeps its default effect, which is to end the process.
    if (!m_notifier)
        return;
    struct sigaction action = {};
    action.sa_handler = handleSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    if (::sigaction(signal, &action, nullptr) != 0) {
        qDebug().noquote().nospace() << "UnixSignalWatcher: sigaction: " << std::strerror(errno);
        return;
    }
    m_watched.append(signal);
}

void UnixSignalWatcherPrivate::_q_onNotify(int socket)
{
    Q_Q(UnixSignalWatcher);
    int signal = 0;
    // Another watcher may have been quicker; waiting would hold up the event loop.
    if (::recv(socket, &signal, sizeof signal, MSG_DONTWAIT) != sizeof signal)
        return;
    qDebug().noquote().nospace() << "Caught signal: " << ::strsignal(signal);
    emit q->unixSignal(signal);
}

UnixSignalWatcher::UnixSignalWatcher(QObject *parent)
    : QObject(parent)
    , d_ptr(new UnixSignalWatcherPrivate(this))
{
    qDebug().noquote().nospace() << "UnixSignalWatcher::constructor in thread "
                                 << QThread::currentThreadId();
}

UnixSignalWatcher::~UnixSignalWatcher()
{
    delete d_ptr;
}

void UnixSignalWatcher::watchForSignal(int signal)
{
    Q_D(UnixSignalWatcher);
    d->watchForSignal(signal);
}

#include "moc_sigwatch.cpp"
