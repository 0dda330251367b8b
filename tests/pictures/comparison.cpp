// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparison.h"

#include <QImage>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int ChannelTolerance = 24;     // of 255
constexpr double PixelTolerance = 0.003; // of all pixels

int difference(QRgb left, QRgb right)
{
    return std::max({ std::abs(qRed(left) - qRed(right)), std::abs(qGreen(left) - qGreen(right)),
        std::abs(qBlue(left) - qBlue(right)) });
}

bool isAlike(const QDir &taken, const QString &name, const QImage &baseline)
{
    const QImage picture(taken.filePath(name));
    if (picture.size() != baseline.size()) {
        std::printf("%s: %dx%d instead of %dx%d\n", qUtf8Printable(name), picture.width(),
            picture.height(), baseline.width(), baseline.height());
        return false;
    }
    QImage differences(picture.size(), QImage::Format_RGB32);
    int different = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int amount = difference(picture.pixel(x, y), baseline.pixel(x, y));
            differences.setPixel(x, y, qRgb(amount, amount, amount));
            different += amount > ChannelTolerance ? 1 : 0;
        }
    }
    const double share = double(different) / (picture.width() * picture.height());
    if (share <= PixelTolerance)
        return true;
    std::printf("%s: %.2f %% of the pixels differ\n", qUtf8Printable(name), 100 * share);
    differences.save(taken.filePath(
        QString(name).replace(QStringLiteral(".png"), QStringLiteral(".difference.png"))));
    return false;
}

} // namespace

bool compareWithBaselines(const QDir &taken, const QDir &baselines)
{
    const QStringList names = baselines.entryList({ QStringLiteral("*.png") }, QDir::Files);
    int alike = 0;
    for (const QString &name : names)
        alike += isAlike(taken, name, QImage(baselines.filePath(name))) ? 1 : 0;
    std::printf("%d of %d pictures are like their baselines\n", alike, names.size());
    return !names.isEmpty() && alike == names.size();
}
