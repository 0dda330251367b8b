// SPDX-License-Identifier: GPL-3.0-or-later
#include "wirepeer.h"

#include <algorithm>
#include <csignal>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {
constexpr timeval Patience { 20, 0 };
constexpr size_t LargestCall = 65536;
} // namespace

WirePeer::WirePeer(std::function<void(WirePeer &)> script)
    : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in own = {};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto *const name = reinterpret_cast<sockaddr *>(&own);
    socklen_t size = sizeof own;
    if (::bind(m_listener, name, size) != 0 || ::listen(m_listener, 1) != 0
        || ::setsockopt(m_listener, SOL_SOCKET, SO_RCVTIMEO, &Patience, sizeof Patience) != 0
        || ::getsockname(m_listener, name, &size) != 0)
        qFatal("No listener of the test's own");
    m_port = ntohs(own.sin_port);
    m_thread = std::thread([this, script = std::move(script)] {
        sigset_t all; // a signal is meant for the client
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
        m_socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (m_socket < 0)
            return;
        const int on = 1;
        ::setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        ::setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &Patience, sizeof Patience);
        ::setsockopt(m_socket, SOL_SOCKET, SO_SNDTIMEO, &Patience, sizeof Patience);
        script(*this);
        ::close(m_socket);
    });
}

WirePeer::~WirePeer()
{
    join();
    ::close(m_listener);
}

void WirePeer::join()
{
    if (m_thread.joinable())
        m_thread.join();
}

QByteArray WirePeer::readPacket()
{
    QByteArray head(1, '\0');
    if (!readExactly(head.data(), 1))
        return {};
    int length = 0;
    for (int shift = 0;; shift += 7) {
        char digit = 0;
        if (!readExactly(&digit, 1))
            return {};
        head += digit;
        length |= (digit & 0x7f) << shift;
        if (!(digit & 0x80))
            break;
    }
    QByteArray packet = head + QByteArray(length, '\0');
    return readExactly(packet.data() + head.size(), length) ? packet : QByteArray();
}

bool WirePeer::readExactly(char *bytes, qint64 count)
{
    return count == 0 || ::recv(m_socket, bytes, size_t(count), MSG_WAITALL) == count;
}

bool WirePeer::hears(int withinMs)
{
    pollfd waiting { m_socket, POLLIN, 0 };
    return ::poll(&waiting, 1, withinMs) == 1;
}

bool WirePeer::send(const QByteArray &bytes)
{
    for (int sent = 0; sent < bytes.size();) { // the kernel's patience is with each call as a whole
        const size_t part = std::min(size_t(bytes.size() - sent), LargestCall);
        const ssize_t count = ::send(m_socket, bytes.constData() + sent, part, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        sent += int(count);
    }
    return true;
}

void WirePeer::accept()
{
    readPacket();
    send(QByteArray::fromHex("20020000"));
}
