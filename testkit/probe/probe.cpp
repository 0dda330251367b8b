// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/probe.h"

#include "testkit/waiting.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QRectF>
#include <QTemporaryDir>
#include <QTimer>

namespace {

/** A time of the clock that all processes share, which the probe sends in nanoseconds. */
std::chrono::steady_clock::time_point timePoint(const QJsonValue &nanoseconds)
{
    return std::chrono::steady_clock::time_point(
        std::chrono::nanoseconds(static_cast<qint64>(nanoseconds.toDouble())));
}

} // namespace

Probe::Target::Target(const char *name)
    : Target(QString::fromUtf8(name))
{
}

Probe::Target::Target(const QString &name)
    : selector { { QStringLiteral("name"), name } }
{
}

Probe::Target::Target(const QJsonObject &members)
    : selector(members)
{
}

Probe::Target Probe::Target::type(const QString &name)
{
    return QJsonObject { { QStringLiteral("type"), name } };
}

Probe::Target Probe::Target::file(const QString &name)
{
    return QJsonObject { { QStringLiteral("file"), name } };
}

Probe::Target Probe::Target::text(const QString &text)
{
    return QJsonObject { { QStringLiteral("type"), QStringLiteral("QQuickText") },
        { QStringLiteral("where"), QJsonObject { { QStringLiteral("text"), text } } } };
}

Probe::Target Probe::Target::inside(const QString &name) const
{
    Target narrower(*this);
    narrower.selector.insert(QStringLiteral("inside"), name);
    return narrower;
}

Probe::Probe(const QString &path)
    : m_path(path)
{
}

void Probe::disconnectFromProgram()
{
    m_socket.abort();
}

QJsonObject Probe::request(const QJsonObject &request)
{
    if (!connectToProgram())
        return { { QStringLiteral("error"), QStringLiteral("the probe cannot be reached") } };
    m_socket.write(QJsonDocument(request).toJson(QJsonDocument::Compact) + '\n');
    QEventLoop loop;
    QTimer patience;
    patience.setSingleShot(true);
    QObject::connect(&patience, &QTimer::timeout, &loop, &QEventLoop::quit);
    QObject::connect(&m_socket, &QLocalSocket::readyRead, &loop, &QEventLoop::quit);
    QObject::connect(&m_socket, &QLocalSocket::disconnected, &loop, &QEventLoop::quit);
    patience.start(PatienceMs);
    while (!m_socket.canReadLine() && m_socket.state() == QLocalSocket::ConnectedState
        && patience.isActive())
        loop.exec();
    if (!m_socket.canReadLine())
        return { { QStringLiteral("error"), QStringLiteral("the probe does not answer") } };
    return QJsonDocument::fromJson(m_socket.readLine()).object();
}

bool Probe::press(const QPointF &place, int finger)
{
    return touch(QStringLiteral("press"), place, finger);
}

bool Probe::move(const QPointF &place, int finger)
{
    return touch(QStringLiteral("move"), place, finger);
}

bool Probe::release(const QPointF &place, int finger)
{
    return touch(QStringLiteral("release"), place, finger);
}

bool Probe::tap(const QPointF &place)
{
    return touch(QStringLiteral("tap"), place, 0);
}

bool Probe::tap(const Target &item)
{
    return carriedOut({ { QStringLiteral("op"), QStringLiteral("tap") },
        { QStringLiteral("item"), item.selector } });
}

bool Probe::shows(const Target &item)
{
    return shown(item) > 0;
}

int Probe::shown(const Target &item)
{
    return items(item).size();
}

QJsonValue Probe::property(const Target &item, const QString &name)
{
    return propertyOfAll(item, name).at(0);
}

QJsonArray Probe::propertyOfAll(const Target &item, const QString &name)
{
    QJsonArray values;
    const QJsonArray found = items(item, { name });
    for (const QJsonValue &description : found)
        values.append(description[QStringLiteral("properties")][name]);
    return values;
}

QPointF Probe::centre(const Target &item)
{
    const QJsonValue description = items(item).at(0);
    return { description[QStringLiteral("x")].toDouble(-1),
        description[QStringLiteral("y")].toDouble(-1) };
}

QRectF Probe::area(const Target &item)
{
    const QJsonValue description = items(item).at(0);
    return { description[QStringLiteral("left")].toDouble(),
        description[QStringLiteral("top")].toDouble(),
        description[QStringLiteral("width")].toDouble(),
        description[QStringLiteral("height")].toDouble() };
}

int Probe::alive(const Target &object)
{
    return request({ { QStringLiteral("op"), QStringLiteral("count") },
                       { QStringLiteral("object"), object.selector } })
        .value(QLatin1String("count"))
        .toInt(-1);
}

QJsonValue Probe::objectProperty(const Target &object, const QString &name)
{
    const QJsonObject answer = request({ { QStringLiteral("op"), QStringLiteral("objects") },
        { QStringLiteral("object"), object.selector },
        { QStringLiteral("properties"), QJsonArray { name } } });
    return answer[QStringLiteral("objects")][0][QStringLiteral("properties")][name];
}

bool Probe::setObjectProperty(const Target &object, const QString &name, const QJsonValue &value)
{
    return carriedOut({ { QStringLiteral("op"), QStringLiteral("set") },
        { QStringLiteral("object"), object.selector }, { QStringLiteral("property"), name },
        { QStringLiteral("value"), value } });
}

bool Probe::resize(const QSize &size)
{
    return carriedOut({ { QStringLiteral("op"), QStringLiteral("resize") },
        { QStringLiteral("width"), size.width() }, { QStringLiteral("height"), size.height() } });
}

QImage Probe::picture()
{
    return grabbed({ { QStringLiteral("op"), QStringLiteral("grab") } });
}

QImage Probe::picture(const Target &item)
{
    return grabbed({ { QStringLiteral("op"), QStringLiteral("grab") },
        { QStringLiteral("item"), item.selector } });
}

QJsonArray Probe::scene()
{
    return request({ { QStringLiteral("op"), QStringLiteral("scene") } })
        .value(QLatin1String("items"))
        .toArray();
}

QJsonArray Probe::scene(const Target &item)
{
    return request({ { QStringLiteral("op"), QStringLiteral("scene") },
                       { QStringLiteral("item"), item.selector } })
        .value(QLatin1String("items"))
        .toArray();
}

bool Probe::pass(std::chrono::milliseconds time)
{
    return carriedOut({ { QStringLiteral("op"), QStringLiteral("pass") },
        { QStringLiteral("milliseconds"), static_cast<int>(time.count()) } });
}

int Probe::frames()
{
    return request({ { QStringLiteral("op"), QStringLiteral("frames") } })
        .value(QLatin1String("frames"))
        .toInt(-1);
}

bool Probe::listen(const QString &type, const QJsonArray &signalNames)
{
    return carriedOut({ { QStringLiteral("op"), QStringLiteral("listen") },
        { QStringLiteral("object"), Target::type(type).selector },
        { QStringLiteral("signals"), signalNames } });
}

int Probe::heard()
{
    return request({ { QStringLiteral("op"), QStringLiteral("heard") } })
        .value(QLatin1String("heard"))
        .toInt(-1);
}

bool Probe::watch(const Target &item, const QString &property)
{
    return carriedOut({ { QStringLiteral("op"), QStringLiteral("watch") },
        { QStringLiteral("item"), item.selector }, { QStringLiteral("property"), property } });
}

QMap<QString, std::chrono::steady_clock::time_point> Probe::seen()
{
    const QJsonObject values = request({ { QStringLiteral("op"), QStringLiteral("seen") } })
                                   .value(QLatin1String("seen"))
                                   .toObject();
    QMap<QString, std::chrono::steady_clock::time_point> times;
    for (auto value = values.begin(); value != values.end(); ++value)
        times.insert(value.key(), timePoint(value.value()));
    return times;
}

QJsonValue Probe::environment(const QString &name)
{
    return request({ { QStringLiteral("op"), QStringLiteral("environment") },
                       { QStringLiteral("name"), name } })
        .value(QLatin1String("value"));
}

bool Probe::connectToProgram()
{
    // The program creates the socket some time after it was started.
    return waitUntil([this] {
        if (m_socket.state() == QLocalSocket::UnconnectedState)
            m_socket.connectToServer(m_path);
        return m_socket.state() == QLocalSocket::ConnectedState;
    });
}

bool Probe::touch(const QString &operation, const QPointF &place, int finger)
{
    return carriedOut({ { QStringLiteral("op"), operation }, { QStringLiteral("x"), place.x() },
        { QStringLiteral("y"), place.y() }, { QStringLiteral("id"), finger } });
}

bool Probe::carriedOut(const QJsonObject &order)
{
    const QJsonObject answer = request(order);
    const QString error = answer.value(QLatin1String("error")).toString();
    if (answer.contains(QLatin1String("touched")))
        m_lastTouch = timePoint(answer.value(QLatin1String("touched")));
    if (error.isEmpty())
        return true;
    qWarning("%s: %s", QJsonDocument(order).toJson(QJsonDocument::Compact).constData(),
        qUtf8Printable(error));
    return false;
}

QImage Probe::grabbed(QJsonObject order)
{
    const QTemporaryDir directory;
    const QString file = directory.filePath(QStringLiteral("picture.png"));
    order.insert(QStringLiteral("file"), file);
    if (!carriedOut(order))
        return {};
    return QImage(file);
}

QJsonArray Probe::items(const Target &item, const QStringList &properties)
{
    return request({ { QStringLiteral("op"), QStringLiteral("items") },
                       { QStringLiteral("item"), item.selector },
                       { QStringLiteral("properties"), QJsonArray::fromStringList(properties) } })
        .value(QLatin1String("items"))
        .toArray();
}
