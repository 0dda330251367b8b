// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/http/httpserver.h"

#include <QPointer>
#include <QStringList>
#include <QTcpSocket>
#include <QVector>

/**
 * Stands in for the music server's image service: GET /image/KEY?scale=S&width=W&height=H.
 *
 * Any key has a picture, drawn for it; the answer is a JPEG. "fit" (the default) gives the largest
 * square within W × H, "fill" and "stretch" give W × H. Without a size, the picture is 600 × 600;
 * sizes from 1 to 4096 are served.
 */
class ImageService : public HttpServer {
    Q_OBJECT

public:
    enum class Mode {
        Normal,
        Slow,   ///< answers after a delay
        Hang,   ///< no answer until another mode is set, the connection stays open
        Fail,   ///< status 500
        Drop,   ///< closes the connection without an answer
        Garbage ///< status 200, but the body is no picture
    };

    using HttpServer::HttpServer;

    /** "127.0.0.1:PORT", as the core announces it. */
    QString address() const;

    /**
     * How requests are answered from now on, including those that hang; the delay, in milliseconds,
     * counts for Slow.
     */
    void setMode(Mode mode, int delayMs = 0);
    /** "normal", "slow" and so on. */
    static QStringList modeNames();
    /** The mode of one of these names; Normal for any other. */
    static Mode modeOf(const QString &name);

signals:
    /** One line for people: a request that was not answered as it should have been. */
    void told(const QString &line);

protected:
    void answer(const Request &request, QTcpSocket *socket) override;

private:
    struct Waiting {
        QByteArray target;
        QPointer<QTcpSocket> socket; ///< null once the client has left
    };

    void answerByMode(const QByteArray &target, QTcpSocket *socket);
    void answerWithPicture(const QByteArray &target, QTcpSocket *socket);

    Mode m_mode = Mode::Normal;
    int m_delayMs = 0;
    QVector<Waiting> m_hanging;
};
