// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/apiserver.h"

bool ApiServer::start()
{
    if (listen(8080))
        return true;
    qWarning("the web service cannot be started: %s", qUtf8Printable(errorText()));
    return false;
}

void ApiServer::reply(const Request &request, QTcpSocket *socket)
{
    Q_UNUSED(request)
    respond(socket, m_status, "text/plain", QByteArray());
}
