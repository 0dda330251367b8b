// SPDX-License-Identifier: GPL-3.0-or-later
#include "qmqtthandle_p.h"

#include <QtCore/QSet>

#include <cstdlib>

#include <dirent.h>
#include <fcntl.h>
#include <mosquitto.h>
#include <sys/stat.h>

namespace {
/** No limit on unconfirmed messages: the default of 20 would hold back the 21st. */
constexpr int UnconfirmedLimit = 65535;
/** In bytes; a packet has two of them for the length of a text, and of a will's message. */
constexpr int LongestText = 65535;

/** The sockets that a child process would get.  Ours are to be none of them. */
QSet<int> inheritableSockets()
{
    QSet<int> sockets;
    DIR *const folder = opendir("/proc/self/fd");
    while (const dirent *const entry = folder ? readdir(folder) : nullptr) {
        const int descriptor = std::atoi(entry->d_name); // 0, which is no socket of ours, for "."
        struct stat status = {};
        if (fstat(descriptor, &status) == 0 && S_ISSOCK(status.st_mode)
            && !(fcntl(descriptor, F_GETFD) & FD_CLOEXEC))
            sockets.insert(descriptor);
    }
    if (folder)
        closedir(folder);
    return sockets;
}

/**
 * Whether the library, for which a zero ends a text, would see all of it; and it fits into a
 * packet.
 */
bool isText(const QByteArray &text)
{
    return text.size() <= LongestText && !text.contains('\0');
}

/** The text, or null where the library wants to see that there is none. */
const char *textOrNull(const QByteArray &text)
{
    return text.isEmpty() ? nullptr : text.constData();
}
} // namespace

void QMqttHandle::Deleter::operator()(mosquitto *handle) const
{
    mosquitto_destroy(handle);
}

void QMqttHandle::keepFromChildren(int descriptor)
{
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
}

QMqttClient::ClientError QMqttHandle::create(const QMqttSettings &settings, void *owner)
{
    static const int initialised = mosquitto_lib_init();
    Q_UNUSED(initialised)

    // The protocol wants an id from a client whose session is to be remembered.
    const QByteArray id = settings.clientId.toUtf8();
    const QSet<int> before = inheritableSockets();
    m_handle.reset(
        isText(id) ? mosquitto_new(textOrNull(id), settings.cleanSession, owner) : nullptr);
    if (!m_handle)
        return QMqttClient::IdRejected;
    for (const int socket : inheritableSockets() - before) // the pair by which it wakes up threads
        keepFromChildren(socket);

    mosquitto *const handle = m_handle.get();
    // Packets are queued until we write them, also those that the library answers with: a write
    // while it reads would undo what QMqttConnection::onLog() does.
    mosquitto_threaded_set(handle, true);
    mosquitto_int_option(handle, MOSQ_OPT_PROTOCOL_VERSION, settings.protocolVersion);
    mosquitto_int_option(handle, MOSQ_OPT_SEND_MAXIMUM, UnconfirmedLimit);
    // Commands are small packets in a row; without this the second waits for the peer's delayed
    // ACK.
    mosquitto_int_option(handle, MOSQ_OPT_TCP_NODELAY, 1);
    const QByteArray username = settings.username.toUtf8();
    const QByteArray password = settings.password.toUtf8();
    // The library refuses a password without a user, as the protocol does.
    if (!isText(username) || !isText(password)
        || mosquitto_username_pw_set(handle, textOrNull(username), textOrNull(password))
            != MOSQ_ERR_SUCCESS)
        return QMqttClient::BadUsernameOrPassword;
    const QByteArray willTopic = settings.willTopic.toUtf8();
    if (!willTopic.isEmpty()
        && (!isText(willTopic) || settings.willMessage.size() > LongestText
            || mosquitto_will_set(handle, willTopic.constData(), settings.willMessage.size(),
                   settings.willMessage.constData(), settings.willQoS, settings.willRetain)
                != MOSQ_ERR_SUCCESS))
        return QMqttClient::ProtocolViolation;
    return QMqttClient::NoError;
}
