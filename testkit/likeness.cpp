// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/likeness.h"

#include "testkit/meandifference.h"

#include <QPainter>
#include <QVector>

#include <cmath>

namespace {

/** The mean difference of a channel, of 255, beyond which pictures are not alike. */
constexpr double Near = 8;

QImage loaded(const QString &file)
{
    QImage picture(QStringLiteral(TOUCHUI_CHECKOUT "/") + file);
    if (picture.isNull()) // it would be drawn as black, which a blank area is like
        qFatal("%s cannot be read", qUtf8Printable(file));
    return picture;
}

/** A black page's part of that size, with the picture at that place. */
QImage expected(const QImage &picture, const QPoint &place, const QSize &size, double opacity)
{
    QImage drawn(size, QImage::Format_RGB32);
    drawn.fill(Qt::black);
    QPainter painter(&drawn);
    painter.setOpacity(opacity);
    painter.drawImage(place, picture);
    return drawn;
}

/** Between two pixels, which of them the program's renderer takes is its own affair. */
QVector<QPoint> wholePixels(const QPointF &place)
{
    QVector<QPoint> all;
    for (const double x : { std::floor(place.x()), std::ceil(place.x()) }) {
        for (const double y : { std::floor(place.y()), std::ceil(place.y()) }) {
            const QPoint pixel(static_cast<int>(x), static_cast<int>(y));
            if (!all.contains(pixel))
                all.append(pixel);
        }
    }
    return all;
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
        const QImage whole = loaded(file);
        QRectF place(QPointF(), QSizeF(whole.size()).scaled(area.size(), Qt::KeepAspectRatio));
        place.moveCenter(area.center() - area.toAlignedRect().topLeft());
        const QImage picture
            = whole.scaled(place.size().toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        for (const QPoint &pixel : wholePixels(place.topLeft())) {
            const double apart
                = meanDifference(found, expected(picture, pixel, found.size(), opacity));
            if (apart < least) {
                least = apart;
                nearest = file;
            }
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
