// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QtGlobal>
#include <QtNetwork/QHostAddress>

/**
 * A listener whose queue of callers is full from the start, so that the next one is kept waiting,
 * neither let in nor refused, until the listener yields or closes.  The caller's kernel asks again
 * after a second.
 */
class StubbornListener {
public:
    /** With port 0, on a free one. */
    explicit StubbornListener(
        const QHostAddress &address = QHostAddress(QHostAddress::LocalHost), quint16 port = 0);
    ~StubbornListener();

    quint16 port() const { return m_port; }

    /** Makes room for one caller. */
    void yield();
    /** Whether a caller has been let in. */
    bool hasCaller() const;
    /** The caller's socket, which is the receiver's from now on. */
    int accept();
    /** Refuses whoever waits. */
    void close();

private:
    Q_DISABLE_COPY(StubbornListener)

    int m_listener = -1;
    int m_filler = -1; // the caller that fills the queue
    quint16 m_port = 0;
};
