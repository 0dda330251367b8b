// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/services/recordingserver.h"

#include <QColor>
#include <QMap>
#include <QSize>

/**
 * The music server's image service on a free loopback port, with a behaviour for each image key.  A
 * key without one is answered with status 404.
 */
class ImageServer : public RecordingServer {
    Q_OBJECT

public:
    /** How requests for one key are answered. */
    struct Behaviour {
        enum Kind {
            Picture, ///< a picture in one colour
            Hang,    ///< no answer, the connection stays open
            Drop,    ///< the connection is closed without an answer
            Trouble, ///< status 500
            Garbage, ///< status 200, but the body is no picture
            Endless, ///< status 200, and a body that never ends
            Trickle, ///< the same, a byte at a time
            Raw      ///< what is in "file", head included, and then the end of the connection
        };
        Kind kind = Picture;
        QColor colour = Qt::white;
        const char *format = "JPEG"; ///< or "PNG"
        int delayMs = 0;             ///< before the answer, or before the connection is dropped
        int failures = 0;          ///< so many requests get status 500 before the behaviour begins
        QSize size = { 402, 402 }; ///< pixels; by default what the service is asked for
        QByteArray file = {};      ///< a picture that is sent as it is; its colour does not count

        /** Nothing but this kind. */
        static Behaviour of(Kind kind)
        {
            Behaviour behaviour;
            behaviour.kind = kind;
            return behaviour;
        }
    };

    /** Listens at once.  Ends the test program when that is impossible. */
    explicit ImageServer(QObject *parent = nullptr);

    /** Host and port as the core's "serverUrl" names them. */
    QByteArray address() const;

    void setBehaviour(const QString &key, const Behaviour &behaviour)
    {
        m_behaviours.insert(key, behaviour);
    }

    /** Complete requests for a key so far. */
    int requestsFor(const QString &key) const;

protected:
    void reply(const Request &request, QTcpSocket *socket) override;

private:
    void behave(const Behaviour &behaviour, QTcpSocket *socket);

    QMap<QString, Behaviour> m_behaviours;
};
