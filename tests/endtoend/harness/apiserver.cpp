// SPDX-License-Identifier: GPL-3.0-or-later
#include "apiserver.h"

void ApiServer::answer(const Request &request, QTcpSocket *socket)
{
    Q_UNUSED(request)
    send(socket, m_status, "text/plain", QByteArray());
}
