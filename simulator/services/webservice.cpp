// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/webservice.h"

WebService::WebService(const Installer &install, QObject *parent)
    : HttpServer(parent)
    , m_install(install)
{
}

void WebService::answer(const Request &request, QTcpSocket *socket)
{
    int status = 200;
    QString outcome = QStringLiteral("accepted");
    if (request.target != "/api/install_update_v1") {
        status = 404;
        outcome = QStringLiteral("there is no such page");
    } else if (request.method != "POST") {
        status = 405;
        outcome = QStringLiteral("only POST here");
    } else if (!m_install(&outcome))
        status = 409;
    respond(socket, status, "text/plain", outcome.toUtf8() + '\n');
    emit told(QStringLiteral("web: %1 %2: %3")
                  .arg(QString::fromLatin1(request.method), QString::fromLatin1(request.target),
                      outcome));
}
