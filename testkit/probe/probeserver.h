// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/probe/framecounter.h"
#include "testkit/probe/framewatch.h"
#include "testkit/probe/signalcounter.h"

#include <QLocalServer>
#include <QObject>

class QLocalSocket;
class QQuickItem;
class QQuickWindow;
class QTouchDevice;

/**
 * Answers a test's questions about the running scene and touches its screen, in the GUI thread.
 *
 * Each request is one line holding a JSON object with the member "op"; each gets one line in
 * answer, a JSON object, with the member "error" when the request could not be carried out:
 *
 * - "press", "move", "release", "tap": a finger at x, y in pixels of the window, or at the centre
 *   of "item", moved by dx, dy; the finger's "id" is 0 when not given.
 * - "items": the items that match "item", each with its centre x, y and its bounds left, top,
 *   width, height as seen in the window, its type, and the values of the named "properties".
 * - "objects": the live objects that match "object", with type and named "properties".
 * - "count": how many live objects match "object".
 * - "set": writes "value" to "property" of the first live object that matches "object".
 * - "scene": describes all that is shown, or only "item" with all that is shown in it, see
 *   SceneDescription.
 * - "grab": writes what the window shows, or what "item" looks like by itself, to "file", a path
 *   ending in .png; answers width, height.
 * - "pass": puts the clock of animations and QML timers forward by "milliseconds".
 * - "resize": asks for the window's size, "width" and "height", at the origin of the screen.
 * - "frames": the frames drawn since the last such request; 0 for the first.
 * - "listen": begins to count the emissions of the argumentless "signals" of the first live object
 *   that matches "object"; "heard" answers how many there have been since.
 * - "watch": begins to record when a value of "property" of the first item that matches "item" is
 *   on the screen for the first time; "seen" answers an object of the values, as text, and their
 *   times.
 * - "environment": the value of the variable "name", null when it is unset.
 * - "cursor": the shape of the override cursor as a Qt::CursorShape, null when there is none.
 *
 * "item" and "object" hold the description of a Selector.  Touches are delivered before the answer
 * is sent; it tells when their delivery began, as "touched".  Times are nanoseconds of the
 * monotonic clock that all processes share.  A request that arrives while the program waits in a
 * local event loop is answered from that loop.
 */
class ProbeServer : public QObject {
    Q_OBJECT

public:
    /**
     * Listens at once on the local socket of this path; a test that cannot connect reports the
     * failure.
     */
    explicit ProbeServer(const QString &path);

private:
    void accept();
    void serve(QLocalSocket *socket);
    QJsonObject answer(const QJsonObject &request);
    QJsonObject touch(const QString &operation, const QJsonObject &request, QQuickWindow *window);
    static QJsonObject items(const QJsonObject &request, const QQuickWindow *window);
    static QJsonObject scene(const QJsonObject &request, const QQuickWindow *window);
    static QJsonObject objects(const QJsonObject &request);
    static QJsonObject count(const QJsonObject &request);
    static QJsonObject set(const QJsonObject &request);
    QJsonObject listen(const QJsonObject &request);
    QJsonObject watch(const QJsonObject &request, QQuickWindow *window);
    static QJsonObject grab(const QJsonObject &request, QQuickWindow *window);

    QLocalServer m_server;
    FrameCounter m_frames;
    FrameWatch m_watch;
    SignalCounter m_signals;
    QTouchDevice *m_touchDevice = nullptr;
};
