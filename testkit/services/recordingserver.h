// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/http/httpserver.h"

#include <QList>

/** An HTTP server that remembers what it was asked. */
class RecordingServer : public HttpServer {
    Q_OBJECT

public:
    using HttpServer::HttpServer;

    /** Every request received completely, in order. */
    const QList<Request> &requests() const { return m_requests; }

protected:
    /** See HttpServer::answer(); the request is recorded already. */
    virtual void reply(const Request &request, QTcpSocket *socket) = 0;

private:
    void answer(const Request &request, QTcpSocket *socket) final;

    QList<Request> m_requests;
};
