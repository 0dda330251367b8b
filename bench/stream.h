// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QTcpSocket>

/**
 * What the playing zone publishes, see StreamMessage, all at once.
 *
 * The packets are put together beforehand and written to the broker as they are, so that the cost
 * of publishing is not part of what is measured.
 */
class Stream {
public:
    explicit Stream(int messages);

    int messages() const { return m_messages; }

    /** Connects to the broker; false, with a message, when it does not accept the connection. */
    bool connectToBroker();
    /** Sends a remote-control command. Returns at once, like the next function. */
    void sendCommand(const QByteArray &name);
    /** Sends all messages. */
    void sendAll();

private:
    int m_messages;
    QByteArray m_packets;
    QTcpSocket m_socket;
};
