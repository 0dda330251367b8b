// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtNetwork/QTcpServer>
#include <QtNetwork/QTcpSocket>

/**
 * A listener on 127.0.0.1 that answers a request to connect with given bytes, and nothing else
 * unless told.  It keeps the packets it got.
 */
class FakeBroker : public QObject {
    Q_OBJECT
public:
    enum Packet : quint8 {
        Connect = 0x10,
        Publish = 0x30,
        Subscribe = 0x80,
        PingRequest = 0xc0,
        Disconnect = 0xe0
    };

    /** Port 0 takes any free one. */
    explicit FakeBroker(quint16 port = 0);

    quint16 port() const { return m_server.serverPort(); }

    /** The answer to a request to connect; empty: none. */
    void setAnswer(const QByteArray &bytes) { m_answer = bytes; }
    /** Closes the connection after the answer. */
    void setClosing(bool closing) { m_closing = closing; }
    void setAnsweringPings(bool answering) { m_answeringPings = answering; }

    /** Sends to the newest client. */
    void send(const QByteArray &bytes);
    /** Sends each byte in a segment of its own. */
    void sendByteWise(const QByteArray &bytes);
    /** Sends the same again and again, as fast as the newest client takes it; 0 ends it. */
    void pour(const QByteArray &bytes, int times);
    bool isPouring() const { return m_pourings > 0; }
    /** Answers the newest request to subscribe: with a quality of service, or 0x80 to refuse. */
    void answerSubscription(quint8 code);
    /** Closes the newest client's connection in an orderly way. */
    void closeConnection();
    /** Resets the newest client's connection. */
    void resetConnection();

    /** Whole packets, in order, of all connections. */
    QList<QByteArray> packets() const { return m_packets; }
    /** Number of packets of one type, whatever their flags. */
    int count(Packet type) const;
    int connections() const { return m_connections; }
    /** True if the newest client has closed its side. */
    bool isDeserted() const;

    static QByteArray acceptance() { return QByteArray::fromHex("20020000"); }
    /** A message at quality of service 0. */
    static QByteArray message(const QByteArray &topic, const QByteArray &payload);
    /** All of such a message that comes before a payload of this size. */
    static QByteArray messageHead(const QByteArray &topic, int payloadSize);

private:
    void accept();
    void pourOn();
    void read(QTcpSocket *socket);
    void handle(const QByteArray &packet);

    QTcpServer m_server;
    QPointer<QTcpSocket> m_socket; // of the newest client
    QByteArray m_unread;
    QByteArray m_answer = acceptance();
    QList<QByteArray> m_packets;
    int m_connections = 0;
    QByteArray m_poured;
    int m_pourings = 0;
    bool m_closing = false;
    bool m_answeringPings = true;
};
