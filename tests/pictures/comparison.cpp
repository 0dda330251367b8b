// SPDX-License-Identifier: GPL-3.0-or-later
#include "comparison.h"

#include "testkit/baseline.h"

#include <QImage>

#include <cstdio>

namespace {

bool isAlike(const QDir &taken, const QString &name, const QImage &baseline)
{
    const QImage picture(taken.filePath(name));
    if (picture.size() != baseline.size()) {
        std::printf("%s: %dx%d instead of %dx%d\n", qUtf8Printable(name), picture.width(),
            picture.height(), baseline.width(), baseline.height());
        return false;
    }
    QImage differences;
    const double share = Baseline::differingShare(picture, baseline, &differences);
    if (Baseline::isAlike(picture, baseline))
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
