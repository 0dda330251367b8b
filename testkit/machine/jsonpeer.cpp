// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/machine/jsonpeer.h"

#include "testkit/waiting.h"

#include <QElapsedTimer>
#include <QJsonDocument>

namespace {

constexpr int PatienceForOneMs = 5000;

} // namespace

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
    write(command, arguments);
    return answer(milliseconds);
}

bool JsonPeer::synchronise(const QString &command, int milliseconds)
{
    QElapsedTimer time;
    time.start();
    // Asked again and again: one question may have gone down with the machine.
    while (isConnected() && time.elapsed() < milliseconds) {
        const int number = ++m_questions;
        write(command, { { QStringLiteral("id"), number } });
        for (;;) {
            const QJsonObject heard = answer(PatienceForOneMs);
            if (heard.isEmpty())
                break;
            if (heard.value(QStringLiteral("return")).toInt() == number)
                return true;
        }
    }
    return false;
}

void JsonPeer::write(const QString &command, const QJsonObject &arguments)
{
    QJsonObject request { { QStringLiteral("execute"), command } };
    if (!arguments.isEmpty())
        request.insert(QStringLiteral("arguments"), arguments);
    m_socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
}

/** The next line that is an answer, and not the report of an event. */
QJsonObject JsonPeer::answer(int milliseconds)
{
    QJsonObject heard;
    waitUntil(
        [&] {
            while (heard.isEmpty() && m_socket.canReadLine()) {
                const QJsonObject line = QJsonDocument::fromJson(m_socket.readLine()).object();
                if (line.contains(QStringLiteral("return"))
                    || line.contains(QStringLiteral("error")))
                    heard = line;
            }
            return !heard.isEmpty() || !isConnected();
        },
        milliseconds);
    return heard;
}
