// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtGlobal>

#include <functional>
#include <thread>

/**
 * The other end of one connection, on a free port of 127.0.0.1, played by a script in a thread of
 * its own: it goes on while the client blocks.  All its waits have an end.
 */
class WirePeer {
public:
    /** The script runs once a caller is there; when it returns, the connection is closed. */
    explicit WirePeer(std::function<void(WirePeer &)> script);
    /** Waits for the end of the script. */
    ~WirePeer();

    quint16 port() const { return m_port; }
    /** Waits for the end of the script; afterwards the test may look at what it has noted. */
    void join();

    // For the script:

    /** The next packet, whole; empty when the client has gone or says nothing for long. */
    QByteArray readPacket();
    /** Whether there is something to read within this time. */
    bool hears(int withinMs);
    /** False when the client has gone. */
    bool send(const QByteArray &bytes);
    /** Reads the request to connect and accepts it. */
    void accept();

private:
    Q_DISABLE_COPY(WirePeer)
    bool readExactly(char *bytes, qint64 count);

    int m_listener = -1;
    int m_socket = -1;
    quint16 m_port = 0;
    std::thread m_thread;
};
