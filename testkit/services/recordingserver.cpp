// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/services/recordingserver.h"

void RecordingServer::answer(const Request &request, QTcpSocket *socket)
{
    m_requests.append(request);
    reply(request, socket);
}
