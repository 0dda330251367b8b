// SPDX-License-Identifier: GPL-3.0-or-later
#include "roon.h"

#include "storeifchanged.h"

#include <QDebug>
#include <QHostAddress>
#include <QHostInfo>
#include <QNetworkInterface>
#include <QThread>

#include <algorithm>

Roon *Roon::instance()
{
    static Roon *const theInstance = new Roon;
    return theInstance;
}

Roon::Roon(QObject *parent)
    : QObject(parent)
{
    qDebug().noquote().nospace() << "Roon::constructor in thread " << QThread::currentThreadId();
}

void Roon::setCoreDetected(bool detected)
{
    // Deliberate: no test for equality, see the header.
    m_coreDetected = detected;
    emit coreDetectionChanged();
}

void Roon::setServerUrl(const QString &url)
{
    if (storeIfChanged(m_serverUrl, url))
        emit m_serverUrlNotifier.changed();
}

QString Roon::ipAddress() const
{
    const QList<QNetworkInterface> interfaces = QNetworkInterface::allInterfaces();
    const auto usable = std::find_if(
        interfaces.begin(), interfaces.end(), [](const QNetworkInterface &candidate) {
            const QNetworkInterface::InterfaceFlags flags = candidate.flags();
            return flags.testFlag(QNetworkInterface::IsRunning)
                && flags.testFlag(QNetworkInterface::IsUp)
                && !flags.testFlag(QNetworkInterface::IsLoopBack);
        });
    if (usable == interfaces.end())
        return QString();
    qInfo().noquote().nospace() << "Roon::ipAddress() found interface: " << usable->name();

    // Deliberate: later interfaces are not consulted, even when this one has no IPv4 address.
    const QList<QNetworkAddressEntry> entries = usable->addressEntries();
    for (const QNetworkAddressEntry &entry : entries) {
        if (entry.ip().protocol() == QAbstractSocket::IPv4Protocol) {
            const QString address = entry.ip().toString();
            qInfo().noquote().nospace() << "Roon::ipAddress() " << address;
            return address;
        }
    }
    return QString();
}

QString Roon::localHostName() const
{
    return QHostInfo::localHostName();
}
