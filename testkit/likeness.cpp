// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/likeness.h"

#include "testkit/meandifference.h"

#include <QPainter>

namespace {

/** The mean difference of a channel, of 255, beyond which pictures are not alike. */
constexpr double Near = 16;

QImage expected(const QString &file, const QRectF &area, const QPoint &origin, const QSize &size,
    double opacity)
{
    const QImage picture(QStringLiteral(TOUCHUI_CHECKOUT "/") + file);
    if (picture.isNull()) // it would be drawn as black, which a blank area is like
        qFatal("%s cannot be read", qUtf8Printable(file));
    QRectF place(QPointF(), QSizeF(picture.size()).scaled(area.size(), Qt::KeepAspectRatio));
    place.moveCenter(area.center() - origin);
    QImage drawn(size, QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setOpacity(opacity);
    // Scaled first: the painter itself looks at four pixels only, and misses what lies between.
    painter.drawImage(place,
        picture.scaled(place.size().toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    return drawn;
}

/** The whole pixels of the area; a null picture when they do not all lie on the page. */
QImage seen(const QImage &page, const QRectF &area)
{
    const QRect pixels = area.toAlignedRect();
    return !area.isEmpty() && page.rect().contains(pixels) ? page.copy(pixels) : QImage();
}

} // namespace

QString drawnFile(const QImage &page, const QRectF &area, const QStringList &files, double opacity)
{
    const QImage found = seen(page, area);
    if (found.isNull())
        return {};
    QString nearest;
    double least = Near;
    for (const QString &file : files) {
        const double apart = meanDifference(
            found, expected(file, area, area.toAlignedRect().topLeft(), found.size(), opacity));
        if (apart < least) {
            least = apart;
            nearest = file;
        }
    }
    return nearest;
}

bool isBlank(const QImage &page, const QRectF &area)
{
    const QImage found = seen(page, area);
    for (int y = 0; y < found.height(); ++y) {
        for (int x = 0; x < found.width(); ++x) {
            if (found.pixelColor(x, y) != QColor(Qt::black))
                return false;
        }
    }
    return !found.isNull();
}
