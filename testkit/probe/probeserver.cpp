// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/probeserver.h"

#include "testkit/probe/animationclock.h"
#include "testkit/probe/clock.h"
#include "testkit/probe/scenedescription.h"
#include "testkit/probe/selector.h"
#include "testkit/probe/values.h"

#include <QCursor>
#include <QEventLoop>
#include <QGuiApplication>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QPainter>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QQuickWindow>
#include <QtTest/qtesttouch.h>

namespace {

QJsonObject error(const QString &text)
{
    return { { QStringLiteral("error"), text } };
}

QQuickWindow *shownWindow()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *candidate : windows) {
        auto *const window = qobject_cast<QQuickWindow *>(candidate);
        if (window && window->isVisible())
            return window;
    }
    return nullptr;
}

QJsonObject propertiesOf(const QObject *object, const QJsonArray &names)
{
    QJsonObject properties;
    for (const QJsonValue &name : names)
        properties.insert(name.toString(), toJson(object->property(name.toString().toLatin1())));
    return properties;
}

QJsonObject described(const QObject *object, const QJsonArray &names)
{
    return { { QStringLiteral("type"), QLatin1String(object->metaObject()->className()) },
        { QStringLiteral("properties"), propertiesOf(object, names) } };
}

QPointF centreOf(const QQuickItem *item)
{
    return item->mapToScene({ item->width() / 2, item->height() / 2 });
}

/** What the item looks like by itself, shown or not. */
QImage pictureOf(QQuickItem *item)
{
    const QSharedPointer<QQuickItemGrabResult> grabbed = item->grabToImage();
    if (!grabbed)
        return {};
    QEventLoop loop;
    QObject::connect(grabbed.data(), &QQuickItemGrabResult::ready, &loop, &QEventLoop::quit);
    loop.exec();
    return grabbed->image();
}

/**
 * What the window shows.  The offscreen platform cannot give the picture of a window that is drawn
 * by the software renderer; then the scene is rendered once more, into a picture, and laid on the
 * window's colour.
 */
QImage pictureOf(QQuickWindow *window)
{
    const QImage direct = window->grabWindow();
    if (!direct.isNull())
        return direct;
    const QImage scene = pictureOf(window->contentItem());
    QImage image(scene.size(), QImage::Format_RGB32);
    image.fill(window->color());
    QPainter(&image).drawImage(0, 0, scene);
    return image;
}

QJsonArray propertyNames(const QJsonObject &request)
{
    return request.value(QLatin1String("properties")).toArray();
}

} // namespace

ProbeServer::ProbeServer(const QString &path)
{
    connect(&m_server, &QLocalServer::newConnection, this, &ProbeServer::accept);
    m_server.listen(path);
}

void ProbeServer::accept()
{
    while (QLocalSocket *const socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { serve(socket); });
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void ProbeServer::serve(QLocalSocket *socket)
{
    while (socket->canReadLine()) {
        const QJsonObject request = QJsonDocument::fromJson(socket->readLine()).object();
        socket->write(QJsonDocument(answer(request)).toJson(QJsonDocument::Compact) + '\n');
        socket->flush();
    }
}

QJsonObject ProbeServer::answer(const QJsonObject &request)
{
    const QString operation = request.value(QLatin1String("op")).toString();
    if (operation == QLatin1String("objects"))
        return objects(request);
    if (operation == QLatin1String("count"))
        return count(request);
    if (operation == QLatin1String("set"))
        return set(request);
    if (operation == QLatin1String("environment")) {
        const QByteArray name = request.value(QLatin1String("name")).toString().toLocal8Bit();
        return { { QStringLiteral("value"),
            qEnvironmentVariableIsSet(name) ? QJsonValue(qEnvironmentVariable(name))
                                            : QJsonValue() } };
    }
    if (operation == QLatin1String("cursor")) {
        const QCursor *const cursor = QGuiApplication::overrideCursor();
        return { { QStringLiteral("shape"), cursor ? QJsonValue(cursor->shape()) : QJsonValue() } };
    }
    if (operation == QLatin1String("listen"))
        return listen(request);
    if (operation == QLatin1String("heard"))
        return { { QStringLiteral("heard"), m_signals.count() } };
    if (operation == QLatin1String("seen"))
        return { { QStringLiteral("seen"), m_watch.seen() } };
    if (operation == QLatin1String("pass")) {
        AnimationClock().pass(request.value(QLatin1String("milliseconds")).toInt());
        return {};
    }

    QQuickWindow *const window = shownWindow();
    if (!window)
        return error(QStringLiteral("no window is shown"));
    if (operation == QLatin1String("items"))
        return items(request, window);
    if (operation == QLatin1String("scene"))
        return scene(request, window);
    if (operation == QLatin1String("grab"))
        return grab(request, window);
    if (operation == QLatin1String("resize")) {
        // There, the screen has one size, and a full-screen window no other.
        if (QGuiApplication::platformName() == QLatin1String("offscreen"))
            window->setWindowState(Qt::WindowNoState);
        window->setGeometry(0, 0, request.value(QLatin1String("width")).toInt(),
            request.value(QLatin1String("height")).toInt());
        return {};
    }
    if (operation == QLatin1String("frames"))
        return { { QStringLiteral("frames"), m_frames.take(window) } };
    if (operation == QLatin1String("watch"))
        return watch(request, window);
    return touch(operation, request, window);
}

QJsonObject ProbeServer::touch(
    const QString &operation, const QJsonObject &request, QQuickWindow *window)
{
    QPointF position(
        request.value(QLatin1String("x")).toDouble(), request.value(QLatin1String("y")).toDouble());
    if (request.contains(QLatin1String("item"))) {
        const QList<QQuickItem *> found
            = Selector(request.value(QLatin1String("item")).toObject()).items(window);
        if (found.isEmpty())
            return error(QStringLiteral("no such item"));
        position = centreOf(found.first())
            + QPointF(request.value(QLatin1String("dx")).toDouble(),
                request.value(QLatin1String("dy")).toDouble());
    }
    const int finger = request.value(QLatin1String("id")).toInt();
    const QPoint pixel = position.toPoint();

    // Made with the first touch, because the platform is not up yet when the plugin is loaded.
    if (!m_touchDevice)
        m_touchDevice = QTest::createTouchDevice();
    const QJsonObject began { { QStringLiteral("touched"), monotonicNanoseconds() } };
    const bool tap = operation == QLatin1String("tap");
    if (operation == QLatin1String("move")) {
        QTest::touchEvent(window, m_touchDevice).move(finger, pixel, window);
        return began;
    }
    if (!tap && operation != QLatin1String("press") && operation != QLatin1String("release"))
        return error(QStringLiteral("unknown operation"));
    if (tap || operation == QLatin1String("press"))
        QTest::touchEvent(window, m_touchDevice).press(finger, pixel, window);
    if (tap || operation == QLatin1String("release"))
        QTest::touchEvent(window, m_touchDevice).release(finger, pixel, window);
    return began;
}

QJsonObject ProbeServer::listen(const QJsonObject &request)
{
    const QList<QObject *> found
        = Selector(request.value(QLatin1String("object")).toObject()).objects();
    if (found.isEmpty())
        return error(QStringLiteral("no such object"));
    if (!m_signals.listen(found.first(), request.value(QLatin1String("signals")).toArray()))
        return error(QStringLiteral("no such signal"));
    return {};
}

QJsonObject ProbeServer::watch(const QJsonObject &request, QQuickWindow *window)
{
    const QList<QQuickItem *> found
        = Selector(request.value(QLatin1String("item")).toObject()).items(window);
    if (found.isEmpty())
        return error(QStringLiteral("no such item"));
    m_watch.begin(
        window, found.first(), request.value(QLatin1String("property")).toString().toLatin1());
    return {};
}

QJsonObject ProbeServer::items(const QJsonObject &request, const QQuickWindow *window)
{
    const QJsonArray names = propertyNames(request);
    QJsonArray list;
    const QList<QQuickItem *> found
        = Selector(request.value(QLatin1String("item")).toObject()).items(window);
    for (const QQuickItem *item : found) {
        const QPointF centre = centreOf(item);
        const QRectF area = item->mapRectToScene({ 0, 0, item->width(), item->height() });
        QJsonObject description = described(item, names);
        description.insert(QStringLiteral("x"), centre.x());
        description.insert(QStringLiteral("y"), centre.y());
        description.insert(QStringLiteral("left"), area.left());
        description.insert(QStringLiteral("top"), area.top());
        description.insert(QStringLiteral("width"), area.width());
        description.insert(QStringLiteral("height"), area.height());
        list.append(description);
    }
    return { { QStringLiteral("items"), list } };
}

QJsonObject ProbeServer::scene(const QJsonObject &request, const QQuickWindow *window)
{
    QQuickItem *root = window->contentItem();
    if (request.contains(QLatin1String("item"))) {
        const QList<QQuickItem *> found
            = Selector(request.value(QLatin1String("item")).toObject()).items(window);
        if (found.isEmpty())
            return error(QStringLiteral("no such item"));
        root = found.first();
    }
    return { { QStringLiteral("items"), SceneDescription(root).items() } };
}

QJsonObject ProbeServer::objects(const QJsonObject &request)
{
    const QJsonArray names = propertyNames(request);
    QJsonArray list;
    const QList<QObject *> found
        = Selector(request.value(QLatin1String("object")).toObject()).objects();
    for (const QObject *object : found)
        list.append(described(object, names));
    return { { QStringLiteral("objects"), list } };
}

QJsonObject ProbeServer::count(const QJsonObject &request)
{
    const Selector selector(request.value(QLatin1String("object")).toObject());
    if (!selector.isValid())
        return error(QStringLiteral("nothing to count"));
    return { { QStringLiteral("count"), selector.objects().size() } };
}

QJsonObject ProbeServer::set(const QJsonObject &request)
{
    const QList<QObject *> found
        = Selector(request.value(QLatin1String("object")).toObject()).objects();
    if (found.isEmpty())
        return error(QStringLiteral("no such object"));
    const QByteArray name = request.value(QLatin1String("property")).toString().toLatin1();
    // Not a property that the object would only get by being written to.
    if (found.first()->metaObject()->indexOfProperty(name) < 0
        || !found.first()->setProperty(name, request.value(QLatin1String("value")).toVariant()))
        return error(QStringLiteral("no such property, or not such a value"));
    return {};
}

QJsonObject ProbeServer::grab(const QJsonObject &request, QQuickWindow *window)
{
    QImage image;
    if (request.contains(QLatin1String("item"))) {
        const QList<QQuickItem *> found
            = Selector(request.value(QLatin1String("item")).toObject()).items(window);
        if (found.isEmpty())
            return error(QStringLiteral("no such item"));
        image = pictureOf(found.first());
    } else {
        image = pictureOf(window);
    }
    if (image.isNull())
        return error(QStringLiteral("there is no picture"));
    if (!image.save(request.value(QLatin1String("file")).toString()))
        return error(QStringLiteral("the picture cannot be written"));
    return { { QStringLiteral("width"), image.width() },
        { QStringLiteral("height"), image.height() } };
}
