// SPDX-License-Identifier: GPL-3.0-or-later
#include "pixels.h"

#include <QImage>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QSignalSpy>
#include <QtMath>

namespace {
constexpr int FaintestAlpha = 50;
}

Pixels *Pixels::instance()
{
    static Pixels *const pixels = new Pixels;
    return pixels;
}

QVariant Pixels::grab(QQuickItem *item) const
{
    const QSharedPointer<QQuickItemGrabResult> result = item->grabToImage();
    if (!result)
        return {};
    QSignalSpy ready(result.data(), &QQuickItemGrabResult::ready);
    return ready.wait() ? result->image() : QVariant();
}

QRect Pixels::drawn(const QVariant &picture) const
{
    const auto image = picture.value<QImage>();
    QRect found;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) >= FaintestAlpha)
                found |= QRect(x, y, 1, 1);
        }
    }
    return found;
}

QColor Pixels::at(const QVariant &picture, int x, int y) const
{
    return picture.value<QImage>().pixelColor(x, y);
}

QVariant Pixels::part(const QVariant &picture, const QRectF &area) const
{
    const QRect whole(QPoint(qCeil(area.left()), qCeil(area.top())),
        QPoint(qFloor(area.right()) - 1, qFloor(area.bottom()) - 1));
    return picture.value<QImage>().copy(whole);
}

QColor Pixels::brightest(const QVariant &picture) const
{
    const auto image = picture.value<QImage>();
    QRgb found = qRgb(0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qRed(pixel) + qGreen(pixel) + qBlue(pixel)
                > qRed(found) + qGreen(found) + qBlue(found))
                found = pixel;
        }
    }
    return QColor(found);
}

bool Pixels::same(const QVariant &picture, const QVariant &other) const
{
    return picture.value<QImage>() == other.value<QImage>();
}
