// SPDX-License-Identifier: GPL-3.0-or-later
#include "imageprovider.h"
#include "roon.h"

#include <QDebug>
#include <QEventLoop>
#include <QMutexLocker>
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

} // namespace

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
    return QUrl(QStringLiteral("http://") + Roon::instance()->serverUrl()
        + QStringLiteral("/image/") + id
        + QStringLiteral("?scale=fit&width=402&height=402&format=image/jpeg"));
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
        QMutexLocker locker(&m_lock);
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
    if (reply->isFinished() && reply->error() != QNetworkReply::NoError) {
        qCritical() << "ImageProvider::requestImage() ERROR occured, retrying...";
        manager.clearConnectionCache();
        reply->deleteLater();
        reply = get(manager, url);
    }
    if (!reply->isFinished()) {
        // The wait was abandoned, or the program quits.  Such a reply has no error to show yet.
        reply->abort();
        return m_logo;
    }
    reply->deleteLater();
    if (reply->error() != QNetworkReply::NoError) {
        qCritical().noquote().nospace()
            << "ImageProvider::requestImage() network ERROR: " << reply->errorString();
        return m_logo;
    }

    const QImage image = QImage::fromData(reply->readAll());
    if (size)
        *size = image.size();
    {
        QMutexLocker locker(&m_lock);
        m_lastUrl = url;
        m_cachedImage = std::make_unique<QImage>(image);
    }
    qInfo() << "ImageProvider::requestImage() return fetched mage";
    return image;
}

/** Asks for @p url and waits. The reply is unfinished if the wait was ended from outside. */
QNetworkReply *ImageProvider::get(QNetworkAccessManager &manager, const QUrl &url)
{
    QEventLoop loop;
    QNetworkReply *const reply = manager.get(QNetworkRequest(url));
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    {
        QMutexLocker locker(&m_lock);
        m_waits.append(&loop);
    }
    loop.exec();
    {
        QMutexLocker locker(&m_lock);
        m_waits.removeOne(&loop);
    }
    return reply;
}

bool ImageProvider::prefetch(const QString &id)
{
    requestImage(id, nullptr, QSize());
    QMutexLocker locker(&m_lock);
    return m_lastUrl == imageUrl(id);
}

void ImageProvider::abandonFetches()
{
    QMutexLocker locker(&m_lock);
    for (QEventLoop *const wait : qAsConst(m_waits))
        wait->quit();
}
