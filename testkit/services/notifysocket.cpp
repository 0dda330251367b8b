// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/notifysocket.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

sockaddr_un addressOf(const QString &name)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(name);
    if (static_cast<size_t>(path.size()) >= sizeof address.sun_path)
        qFatal("the path of the notification socket is too long: %s", path.constData());
    std::memcpy(address.sun_path, path.constData(), static_cast<size_t>(path.size()));
    return address;
}

} // namespace

NotifySocket::NotifySocket(QObject *parent)
    : QObject(parent)
    , m_path(m_directory.filePath(QStringLiteral("notify")))
{
    m_time.start();
    const sockaddr_un address = addressOf(m_path);
    m_descriptor = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (m_descriptor < 0
        || ::bind(m_descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
        qFatal("cannot make the notification socket: %s", std::strerror(errno));
    m_notifier = std::make_unique<QSocketNotifier>(m_descriptor, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &NotifySocket::receive);
}

NotifySocket::~NotifySocket()
{
    m_notifier.reset();
    ::close(m_descriptor);
}

int NotifySocket::count(const QByteArray &text) const
{
    return static_cast<int>(std::count_if(m_messages.begin(), m_messages.end(),
        [&text](const Message &message) { return message.text == text; }));
}

void NotifySocket::fill()
{
    stopReading();
    const sockaddr_un address = addressOf(m_path);
    const int sender = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    while (::sendto(sender, "x", 1, 0, reinterpret_cast<const sockaddr *>(&address), sizeof address)
        == 1) { }
    if (errno != EAGAIN)
        qFatal("cannot fill the notification socket: %s", std::strerror(errno));
    ::close(sender);
}

void NotifySocket::vanish()
{
    QFile::remove(m_path);
}

void NotifySocket::receive()
{
    char buffer[4096];
    for (;;) {
        const ssize_t length = ::recv(m_descriptor, buffer, sizeof buffer, 0);
        if (length < 0)
            return;
        m_messages.append({ QByteArray(buffer, static_cast<int>(length)), m_time.elapsed() });
    }
}
