// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/services/imageservice.h"

#include "simulator/services/coverart.h"

#include <QBuffer>
#include <QSize>
#include <QTimer>
#include <QUrl>
#include <QUrlQuery>

#include <algorithm>
#include <utility>

namespace {

constexpr int LargestSide = 4096;
constexpr int DefaultSide = 600;
constexpr int JpegQuality = 88;
const QString ImagePath = QStringLiteral("/image/");

struct ModeName {
    const char *name;
    ImageService::Mode mode;
};

constexpr ModeName ModeNames[] = {
    { "normal", ImageService::Mode::Normal },
    { "slow", ImageService::Mode::Slow },
    { "hang", ImageService::Mode::Hang },
    { "fail", ImageService::Mode::Fail },
    { "drop", ImageService::Mode::Drop },
    { "garbage", ImageService::Mode::Garbage },
};

/** A side as the query asks for it; 0 when that is not a size. */
int side(const QUrlQuery &query, const QString &name)
{
    const QString text = query.queryItemValue(name);
    if (text.isNull() || text.isEmpty())
        return DefaultSide;
    const int value = text.toInt();
    return value <= LargestSide ? qMax(0, value) : 0;
}

} // namespace

QString ImageService::address() const
{
    return QStringLiteral("127.0.0.1:%1").arg(port());
}

void ImageService::setMode(Mode mode, int delayMs)
{
    m_mode = mode;
    m_delayMs = delayMs;
    // A display without a time-out of its own would wait for the picture forever.
    const QVector<Waiting> hanging = std::exchange(m_hanging, {});
    for (const Waiting &waiting : hanging) {
        if (waiting.socket)
            answerByMode(waiting.target, waiting.socket);
    }
}

QStringList ImageService::modeNames()
{
    QStringList names;
    for (const ModeName &known : ModeNames)
        names.append(QLatin1String(known.name));
    return names;
}

ImageService::Mode ImageService::modeOf(const QString &name)
{
    for (const ModeName &known : ModeNames) {
        if (name == QLatin1String(known.name))
            return known.mode;
    }
    return Mode::Normal;
}

void ImageService::answer(const Request &request, QTcpSocket *socket)
{
    if (request.method != "GET") {
        respond(socket, 405, "text/plain", "only GET here\n");
        return;
    }
    answerByMode(request.target, socket);
}

void ImageService::answerByMode(const QByteArray &target, QTcpSocket *socket)
{
    switch (m_mode) {
    case Mode::Normal:
        answerWithPicture(target, socket);
        return;
    case Mode::Slow:
        // The socket is the context: if it has gone by then, so has the answer.
        QTimer::singleShot(
            m_delayMs, socket, [this, target, socket] { answerWithPicture(target, socket); });
        emit told(QStringLiteral("image: answered in %1 ms").arg(m_delayMs));
        return;
    case Mode::Hang:
        m_hanging.erase(std::remove_if(m_hanging.begin(), m_hanging.end(),
                            [](const Waiting &waiting) { return !waiting.socket; }),
            m_hanging.end());
        m_hanging.append({ target, socket });
        emit told(QStringLiteral("image: left without an answer"));
        return;
    case Mode::Fail:
        respond(socket, 500, "text/plain", "the simulated fault\n");
        emit told(QStringLiteral("image: answered with status 500"));
        return;
    case Mode::Drop:
        emit told(QStringLiteral("image: connection dropped"));
        socket->abort();
        return;
    case Mode::Garbage:
        respond(socket, 200, "image/jpeg", QByteArray("\xff\xd8 this is no picture \x00\x01", 24));
        emit told(QStringLiteral("image: answered with garbage"));
        return;
    }
}

void ImageService::answerWithPicture(const QByteArray &target, QTcpSocket *socket)
{
    const QUrl url = QUrl::fromEncoded(target);
    const QString path = url.path();
    if (!path.startsWith(ImagePath) || path.size() == ImagePath.size()) {
        respond(socket, 404, "text/plain", "pictures are below /image/\n");
        return;
    }
    const QUrlQuery query(url);
    const QString scale = query.queryItemValue(QStringLiteral("scale"));
    QSize size(side(query, QStringLiteral("width")), side(query, QStringLiteral("height")));
    const bool whole = scale == QLatin1String("fill") || scale == QLatin1String("stretch");
    if (size.isEmpty() || !(whole || scale.isEmpty() || scale == QLatin1String("fit"))) {
        respond(socket, 400, "text/plain", "scale is fit, fill or stretch, sides are 1 to 4096\n");
        return;
    }
    if (!whole)
        size = QSize(1, 1).scaled(size, Qt::KeepAspectRatio);
    QBuffer jpeg;
    jpeg.open(QIODevice::WriteOnly);
    CoverArt::draw(path.mid(ImagePath.size()).toUtf8(), size).save(&jpeg, "JPEG", JpegQuality);
    respond(socket, 200, "image/jpeg", jpeg.data());
}
