// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/jsonpeer.h"

#include "testkit/waiting.h"

#include <QJsonDocument>

bool JsonPeer::connectTo(const QString &path, int milliseconds)
{
    return waitUntil(
        [&] {
            if (m_socket.state() == QLocalSocket::UnconnectedState)
                m_socket.connectToServer(path);
            return isConnected();
        },
        milliseconds);
}

QJsonObject JsonPeer::ask(const QString &command, const QJsonObject &arguments, int milliseconds)
{
    QJsonObject request { { QStringLiteral("execute"), command } };
    if (!arguments.isEmpty())
        request.insert(QStringLiteral("arguments"), arguments);
    m_socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    QJsonObject answer;
    waitUntil(
        [&] {
            while (answer.isEmpty() && m_socket.canReadLine()) {
                const QJsonObject line = QJsonDocument::fromJson(m_socket.readLine()).object();
                if (line.contains(QStringLiteral("return"))
                    || line.contains(QStringLiteral("error")))
                    answer = line;
            }
            return !answer.isEmpty() || !isConnected();
        },
        milliseconds);
    return answer;
}
