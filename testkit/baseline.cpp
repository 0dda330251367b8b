// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/baseline.h"

#include <QImage>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int ChannelTolerance = 24;     // of 255
constexpr double PixelTolerance = 0.003; // of all pixels

int difference(QRgb left, QRgb right)
{
    return std::max({ std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
        std::abs(qBlue(left) - qBlue(right)) });
}

} // namespace

double Baseline::differingShare(const QImage &picture, const QImage &other, QImage *differences)
{
    if (picture.size() != other.size() || picture.isNull())
        return 1;
    if (differences != nullptr)
        *differences = QImage(picture.size(), QImage::Format_RGB32);
    const QImage left = picture.convertToFormat(QImage::Format_RGB32);
    const QImage right = other.convertToFormat(QImage::Format_RGB32);
    int different = 0;
    for (int y = 0; y < left.height(); ++y) {
        const auto *const leftLine = reinterpret_cast<const QRgb *>(left.constScanLine(y));
        const auto *const rightLine = reinterpret_cast<const QRgb *>(right.constScanLine(y));
        for (int x = 0; x < left.width(); ++x) {
            const int amount = difference(leftLine[x], rightLine[x]);
            if (differences != nullptr)
                differences->setPixel(x, y, qRgb(amount, amount, amount));
            different += amount > ChannelTolerance ? 1 : 0;
        }
    }
    return double(different) / (left.width() * left.height());
}

bool Baseline::isAlike(const QImage &picture, const QImage &other)
{
    return differingShare(picture, other) <= PixelTolerance;
}

QImage Baseline::named(const QString &name)
{
    const QImage baseline(
        QStringLiteral(TOUCHUI_CHECKOUT "/tests/pictures/baselines/%1.png").arg(name));
    if (baseline.isNull())
        qFatal("there is no baseline %s", qUtf8Printable(name));
    return baseline;
}
