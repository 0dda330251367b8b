// SPDX-License-Identifier: GPL-3.0-or-later
#include "address.h"

#include <QtNetwork/QTcpServer>

void aim(QMqttClient *client, quint16 port)
{
    client->setHostname(QStringLiteral("127.0.0.1"));
    client->setPort(port);
}

quint16 deafPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}
