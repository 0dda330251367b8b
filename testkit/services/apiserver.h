// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/services/recordingserver.h"

/** The appliance's local web service on 127.0.0.1:8080.  Every request gets the same status. */
class ApiServer : public RecordingServer {
    Q_OBJECT

public:
    using RecordingServer::RecordingServer;

    /** False, with a message, when the port is taken. */
    bool start();

    /** The HTTP status of the answers from now on; 200 at first. */
    void setStatus(int status) { m_status = status; }

protected:
    void reply(const Request &request, QTcpSocket *socket) override;

private:
    int m_status = 200;
};
