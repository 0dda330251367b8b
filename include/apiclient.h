// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QNetworkAccessManager;
class QNetworkReply;

/**
 * Commands to the appliance's own web service on this machine, port 8080.
 *
 * Requests are asynchronous and their answers are only logged; what comes of a command shows in the
 * appliance state. Main thread only.
 */
class ApiClient : public QObject {
    Q_OBJECT

public:
    /** The one object, made by the first call and never deleted. */
    static ApiClient *instance();

    /** Sends nothing by itself. */
    explicit ApiClient(QObject *parent = nullptr);

    /**
     * Asks for the installation of the available update and returns at once. Each call sends a
     * request of its own; one that fails is logged and not repeated.
     */
    void installUpdate();

private slots:
    void onFinish(QNetworkReply *reply);

private:
    QNetworkAccessManager *m_network;
};
