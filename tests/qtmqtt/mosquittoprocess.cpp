// SPDX-License-Identifier: GPL-3.0-or-later
#include "mosquittoprocess.h"

#include "testkit/waiting.h"

#include <QtCore/QDebug>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtNetwork/QTcpServer>

namespace {
constexpr int Attempts = 10;

quint16 freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

/** Debian keeps it where only root has a search path to. */
QString findMosquitto()
{
    const QString name = QStringLiteral("mosquitto");
    const QString path = QStandardPaths::findExecutable(name);
    return path.isEmpty() ? QStandardPaths::findExecutable(name, { "/usr/sbin", "/usr/local/sbin" })
                          : path;
}
} // namespace

MosquittoProcess::~MosquittoProcess()
{
    kill();
}

bool MosquittoProcess::start(const QByteArray &settings)
{
    for (int i = 0; i < Attempts; ++i) { // somebody else may take the port first
        if (startOnce(settings))
            return true;
    }
    qWarning() << "The broker does not start:" << m_process.errorString() << m_log;
    return false;
}

bool MosquittoProcess::startOnce(const QByteArray &settings)
{
    m_port = freePort();
    m_log.clear();
    QFile file(m_folder.filePath(QStringLiteral("mosquitto.conf")));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write("listener " + QByteArray::number(m_port)
        + " 127.0.0.1\nallow_anonymous true\npersistence false\n" + settings);
    file.close();

    m_process.setProcessChannelMode(QProcess::MergedChannels);
    m_process.start(findMosquitto(), { QStringLiteral("-c"), file.fileName() });
    while (!log().contains(" running")) {
        if (!m_process.waitForReadyRead(PatienceMs)) {
            log();
            kill();
            return false;
        }
    }
    return true;
}

void MosquittoProcess::stop()
{
    m_process.terminate();
    m_process.waitForFinished(PatienceMs);
}

void MosquittoProcess::kill()
{
    m_process.kill();
    m_process.waitForFinished(PatienceMs);
}

QByteArray MosquittoProcess::log()
{
    m_log += m_process.readAll();
    return m_log;
}
