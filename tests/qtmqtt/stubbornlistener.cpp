// SPDX-License-Identifier: GPL-3.0-or-later
#include "stubbornlistener.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
int tcpSocket()
{
    return ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
}
} // namespace

StubbornListener::StubbornListener(const QHostAddress &address, quint16 port)
    : m_listener(tcpSocket())
    , m_filler(tcpSocket())
{
    sockaddr_in own = {};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = htonl(address.toIPv4Address());
    own.sin_port = htons(port);
    auto *const name = reinterpret_cast<sockaddr *>(&own);
    socklen_t size = sizeof own;
    const int on = 1;
    // A queue of length 0 holds one caller.
    if (::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on) != 0
        || ::bind(m_listener, name, size) != 0 || ::listen(m_listener, 0) != 0
        || ::getsockname(m_listener, name, &size) != 0 || ::connect(m_filler, name, size) != 0)
        qFatal("No listener of the test's own");
    m_port = ntohs(own.sin_port);
}

StubbornListener::~StubbornListener()
{
    close();
}

void StubbornListener::yield()
{
    ::close(accept());
}

bool StubbornListener::hasCaller() const
{
    pollfd waiting { m_listener, POLLIN, 0 };
    return ::poll(&waiting, 1, 0) == 1;
}

int StubbornListener::accept()
{
    return ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
}

void StubbornListener::close()
{
    for (int *const socket : { &m_listener, &m_filler }) {
        if (*socket >= 0)
            ::close(*socket);
        *socket = -1;
    }
}
