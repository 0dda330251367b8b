// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QNetworkAccessManager;
class QNetworkReply;

/**
 * Commands to the appliance's own web service on this machine, port 8080.
 *
 * Requests are asynchronous and their answers only logged; what comes of a command shows in the
 * appliance state. Main thread only.
 */
class ApiClient : public QObject {
    Q_OBJECT

public:
    static ApiClient *instance();

    explicit ApiClient(QObject *parent = nullptr);

    /** Asks for the installation of the available update. Each call sends a request of its own. */
    void installUpdate();

private slots:
    void onFinish(QNetworkReply *reply);

private:
    QNetworkAccessManager *m_network;
};
