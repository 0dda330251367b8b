// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QHash>
#include <QTcpServer>

class QTcpSocket;

/**
 * An HTTP/1.1 server on the loopback address, as small as the appliance's display needs it.
 *
 * Connections stay open for further requests.  A request of more than 64 KiB closes its connection.
 */
class HttpService : public QObject {
    Q_OBJECT

public:
    explicit HttpService(QObject *parent = nullptr);
    /** Closes all connections. */
    ~HttpService() override;

    /** Port 0 takes any free one.  False, with errorText() set, when it cannot be had. */
    bool listen(quint16 port);
    quint16 port() const { return m_server.serverPort(); }
    QString errorText() const { return m_server.errorString(); }

protected:
    /**
     * Answers one request by respond(), now or later, or closes the socket.  The socket deletes
     * itself once it is disconnected.
     */
    virtual void answer(const QByteArray &method, const QByteArray &target, QTcpSocket *socket) = 0;

    static void respond(
        QTcpSocket *socket, int status, const QByteArray &contentType, const QByteArray &body);

private:
    void accept();
    void receive(QTcpSocket *socket);

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_buffers;
};
