// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

/**
 * A mosquitto of the test's own on a free port of 127.0.0.1, without persistence; anybody may
 * connect.
 */
class MosquittoProcess {
public:
    MosquittoProcess() = default;
    ~MosquittoProcess();

    /**
     * Starts it and waits until it serves.  False, with a warning that says why, if there is no
     * mosquitto or it does not come up.  @p settings are further lines for its configuration file.
     */
    bool start(const QByteArray &settings = QByteArray());
    /** SIGTERM, and waits for the end. */
    void stop();
    /** SIGKILL, and waits for the end. */
    void kill();

    quint16 port() const { return m_port; }
    /** What it has written so far. */
    QByteArray log();

private:
    bool startOnce(const QByteArray &settings);

    QTemporaryDir m_folder;
    QProcess m_process;
    QByteArray m_log;
    quint16 m_port = 0;
};
