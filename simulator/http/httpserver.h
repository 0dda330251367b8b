// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QTcpServer>

class QTcpSocket;

/**
 * An HTTP/1.1 server on the loopback address, as small as the appliance's display needs it: for the
 * stand-ins of the simulator and of the tests.
 *
 * Connections stay open for further requests, unless the client asks otherwise. Requests that are
 * sent ahead wait until the answer to the previous one has left. What is not a request, or has a
 * body of unknown length, is answered with status 400 and ends the connection; a request of more
 * than 64 KiB ends it without an answer. Destruction closes all connections; it may happen at any
 * time, but not within answer().
 */
class HttpServer : public QObject {
    Q_OBJECT

public:
    struct Request {
        QByteArray line; ///< "GET /image/key?scale=fit HTTP/1.1"
        QByteArray method;
        QByteArray target;                     ///< path and query as they came
        QHash<QByteArray, QByteArray> headers; ///< names in lower case; of several, the last
        QByteArray body;
    };

    explicit HttpServer(QObject *parent = nullptr);

    /** Port 0 takes any free one. False, with errorText() set, when it cannot be had. */
    bool listen(quint16 port);
    quint16 port() const { return m_server.serverPort(); }
    QString errorText() const { return m_server.errorString(); }

protected:
    /**
     * Answers one complete request by respond(), now, later or never, or closes the socket. The
     * socket deletes itself once it is disconnected: what answers later takes it as its context.
     */
    virtual void answer(const Request &request, QTcpSocket *socket) = 0;

    /**
     * Nothing happens on a socket that has no unanswered request or is already closed. The body is
     * left out if the request was HEAD.
     */
    void respond(
        QTcpSocket *socket, int status, const QByteArray &contentType, const QByteArray &body);

private:
    struct Connection {
        bool isAsked = false;  ///< there is a request without an answer
        bool wantsBody = true; ///< its answer has a body
        bool isLast = false;   ///< the client wants the connection closed after the answer
    };

    void accept();
    void receive(QTcpSocket *socket);
    void close(QTcpSocket *socket);

    QHash<QTcpSocket *, Connection> m_connections;
    QTcpServer m_server; // goes first: it closes the sockets, which then forget their connections
};
