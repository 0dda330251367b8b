// SPDX-License-Identifier: GPL-3.0-or-later
#include "coverpictures.h"

#include <QLinearGradient>
#include <QPainter>

CoverPictures::CoverPictures()
    : QQuickImageProvider(QQmlImageProviderBase::Image)
{
}

QImage CoverPictures::requestImage(const QString &id, QSize *size, const QSize &)
{
    if (id == QLatin1String("__VELUNOR_LOGO__"))
        return QImage(QStringLiteral(":/images/Velunor_logo_v020-07.png"));
    if (id == QLatin1String("broken"))
        return QImage();

    QImage picture(402, 402, QImage::Format_RGB32);
    if (id == QLatin1String("edge")) {
        picture.fill(Qt::black);
        QPainter(&picture).fillRect(0, 0, 301, picture.height(), Qt::white);
        return picture;
    }
    const int hue = int(qHash(id, 0) % 360);
    QLinearGradient gradient(0, 0, picture.width(), picture.height());
    gradient.setColorAt(0, QColor::fromHsv(hue, 200, 230));
    gradient.setColorAt(1, QColor::fromHsv((hue + 90) % 360, 220, 90));
    QPainter(&picture).fillRect(picture.rect(), gradient);
    if (size)
        *size = picture.size();
    return picture;
}
