// SPDX-License-Identifier: GPL-3.0-or-later
#include "pixels.h"

#include <QImage>
#include <QQuickItem>
#include <QQuickItemGrabResult>
#include <QSignalSpy>

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

bool Pixels::same(const QVariant &picture, const QVariant &other) const
{
    return picture.value<QImage>() == other.value<QImage>();
}
