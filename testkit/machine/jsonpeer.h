// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonObject>
#include <QLocalSocket>
#include <QString>

/**
 * Somebody at a local socket who is asked one question at a time, a JSON object in a line each:
 * QEMU, or the agent in its guest.
 */
class JsonPeer {
public:
    /** Waits until somebody listens there; false when nobody does within the time. */
    bool connectTo(const QString &path, int milliseconds);
    bool isConnected() const { return m_socket.state() == QLocalSocket::ConnectedState; }

    /**
     * Asks for a command and waits for the answer, which is whole: {"return": ...} or
     * {"error": ...}.  What is said in between without having been asked is passed over.  Empty,
     * when there is no answer within the time or the peer has gone.
     */
    QJsonObject ask(const QString &command, const QJsonObject &arguments, int milliseconds);

    /**
     * Waits until the peer answers a command that gives back its "id", and passes over what it had
     * still to say to former questions, so that the next answer belongs to the next question.
     */
    bool synchronise(const QString &command, int milliseconds);

private:
    void write(const QString &command, const QJsonObject &arguments);
    QJsonObject answer(int milliseconds);

    QLocalSocket m_socket;
    int m_questions = 0;
};
