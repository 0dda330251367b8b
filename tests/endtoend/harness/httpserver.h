// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTcpServer>

class QTcpSocket;

/**
 * A small HTTP/1.1 server for tests.  It records what was asked; derived classes decide how it is
 * answered.
 */
class HttpServer : public QObject {
    Q_OBJECT

public:
    struct Request {
        QByteArray line; ///< "GET /image/key?scale=fit HTTP/1.1"
        QByteArray method;
        QByteArray target;                     ///< path and query as they came
        QHash<QByteArray, QByteArray> headers; ///< names in lower case
        QByteArray body;
    };

    explicit HttpServer(QObject *parent = nullptr);

    /**
     * Listens on 127.0.0.1; port 0 takes a free one.  False, with a message, when the port is
     * taken.
     */
    bool listen(quint16 port);
    quint16 port() const { return m_server.serverPort(); }

    /** Every request received completely, in order. */
    const QList<Request> &requests() const { return m_requests; }

protected:
    /** Answers, now or later, or not at all.  The socket may go away at any time. */
    virtual void answer(const Request &request, QTcpSocket *socket) = 0;

    static void send(
        QTcpSocket *socket, int status, const QByteArray &contentType, const QByteArray &body);

private:
    void accept();
    void receive(QTcpSocket *socket);

    QHash<QTcpSocket *, QByteArray> m_buffers;
    QList<Request> m_requests;
    QTcpServer m_server; // goes first: it closes the sockets, which then forget their buffers
};
