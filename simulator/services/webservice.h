// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/http/httpserver.h"

#include <functional>

/** Stands in for the appliance's local web service: POST /api/install_update_v1. */
class WebService : public HttpServer {
    Q_OBJECT

public:
    /** Begins an update; false, with the reason, when that is not possible. */
    using Installer = std::function<bool(QString *reason)>;

    explicit WebService(const Installer &install, QObject *parent = nullptr);

signals:
    /** One line for people: a request and what became of it. */
    void told(const QString &line);

protected:
    void answer(const Request &request, QTcpSocket *socket) override;

private:
    Installer m_install;
};
