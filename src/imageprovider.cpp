// SPDX-License-Identifier: GPL-3.0-or-later
#include "imageprovider.h"

#include "coveraddress.h"

#include <QBuffer>
#include <QDebug>
#include <QEventLoop>
#include <QImageReader>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QThread>

namespace {

QString logoId()
{
    return QStringLiteral("__VELUNOR_LOGO__");
}

QString noImageId()
{
    return QStringLiteral("NO_IMAGE");
}

// What a display can be asked to hold. A cover needs a small part of either.
constexpr qint64 MaxBodyBytes = 32 * 1024 * 1024;
constexpr int MaxSide = 8192; // pixels

bool isTooLarge(const QSize &size)
{
    return size.width() > MaxSide || size.height() > MaxSide;
}

bool isTooLong(const QNetworkReply &reply)
{
    return reply.bytesAvailable() > MaxBodyBytes;
}

/** The picture in a reply, in whatever format; null if there is none or it exceeds the limits. */
QImage decoded(QNetworkReply &reply)
{
    if (isTooLong(reply)) // without a copy
        return {};
    QByteArray body = reply.readAll();
    QBuffer buffer(&body);
    QImageReader reader(&buffer);
    if (isTooLarge(reader.size())) // known before anything is decoded, in most formats
        return {};
    const QImage image = reader.read();
    return isTooLarge(image.size()) ? QImage() : image;
}

} // namespace

/** One wait for a reply. The flag is guarded by the provider's lock while the wait is listed. */
struct ImageProvider::Wait {
    QEventLoop loop;
    bool abandoned = false;
};

ImageProvider::ImageProvider(QQmlImageProviderBase::ImageType type)
    : QQuickImageProvider(type)
{
    qDebug().noquote().nospace() << "ImageProvider::constructor in thread "
                                 << QThread::currentThreadId();
    m_logo.load(QStringLiteral(":/images/Velunor_logo_v020-07.png"));
    qDebug().noquote().nospace() << "ImageProvider::constructor logoImage.isNull(): "
                                 << m_logo.isNull();
}

QUrl ImageProvider::imageUrl(const QString &id)
{
    return QUrl(coverAddress(id, ShownCoverSize));
}

bool ImageProvider::isFetched(const QString &id)
{
    return !id.isEmpty() && id != logoId() && id != noImageId();
}

QImage ImageProvider::requestImage(const QString &id, QSize *size, const QSize &)
{
    if (id.isEmpty()) {
        qWarning() << "ImageProvider::requestImage() called with empty id, return logo";
        return m_logo;
    }
    if (id == logoId()) {
        qInfo() << "ImageProvider::requestImage() return logo";
        return m_logo;
    }
    if (id == noImageId()) {
        qInfo() << "ImageProvider::requestImage() called with 'NO_IMAGE', return logo";
        return m_logo;
    }

    const QUrl url = imageUrl(id);
    qDebug().noquote().nospace() << "ImageProvider::requestImage() called with url: "
                                 << url.toString();
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        if (url == m_lastUrl) {
            qDebug() << "ImageProvider::requestImage() return CACHED image!";
            return *m_cachedImage;
        }
    }
    return fetchedImage(url, size);
}

QImage ImageProvider::fetchedImage(const QUrl &url, QSize *size)
{
    QNetworkAccessManager manager;
    QNetworkReply *reply = get(manager, url);
    if (reply && reply->error() != QNetworkReply::NoError) {
        // Deliberate: "occured" is how this line is spelled, and "mage" below.
        qCritical() << "ImageProvider::requestImage() ERROR occured, retrying...";
        manager.clearConnectionCache();
        reply->deleteLater();
        reply = get(manager, url);
    }
    if (!reply)
        return m_logo;
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        qCritical().noquote().nospace()
            << "ImageProvider::requestImage() network ERROR: " << reply->errorString();
        return m_logo;
    }

    const QImage image = decoded(*reply);
    if (size)
        *size = image.size();
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_lastUrl = url;
        m_cachedImage = std::make_unique<QImage>(image);
    }
    qInfo() << "ImageProvider::requestImage() return fetched mage";
    return image;
}

/**
 * Asks for @p url and waits. Null if the wait was ended from outside: because it was abandoned,
 * even if the reply came at that very moment, or because the program quits before it has come. A
 * reply that is longer than any picture may be is returned as far as it has arrived.
 */
QNetworkReply *ImageProvider::get(QNetworkAccessManager &manager, const QUrl &url)
{
    Wait wait;
    // Left to itself, Qt unpacks what is compressed, a thousandfold before anybody can look.
    QNetworkRequest request(url);
    request.setRawHeader("Accept-Encoding", "identity");
    QNetworkReply *const reply = manager.get(request);
    QObject::connect(reply, &QNetworkReply::finished, &wait.loop, &QEventLoop::quit);
    QObject::connect(reply, &QNetworkReply::readyRead, &wait.loop, [&] {
        if (isTooLong(*reply))
            wait.loop.quit();
    });
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_waits.append(&wait);
    }
    wait.loop.exec();
    {
        const std::lock_guard<std::mutex> guard(m_lock);
        m_waits.removeOne(&wait);
    }
    if ((reply->isFinished() || isTooLong(*reply)) && !wait.abandoned)
        return reply;
    reply->abort();
    return nullptr;
}

bool ImageProvider::prefetch(const QString &id)
{
    requestImage(id, nullptr, QSize());
    const std::lock_guard<std::mutex> guard(m_lock);
    return m_lastUrl == imageUrl(id);
}

void ImageProvider::abandonFetches()
{
    const std::lock_guard<std::mutex> guard(m_lock);
    for (Wait *const wait : qAsConst(m_waits)) {
        wait->abandoned = true;
        wait->loop.quit();
    }
}
