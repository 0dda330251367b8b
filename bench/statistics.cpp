// SPDX-License-Identifier: GPL-3.0-or-later
#include "statistics.h"

#include <algorithm>
#include <cmath>

double quantile(QVector<double> samples, double part)
{
    Q_ASSERT(!samples.isEmpty());
    std::sort(samples.begin(), samples.end());
    const int rank = static_cast<int>(std::ceil(part * samples.size()));
    return samples.at(std::max(rank, 1) - 1);
}
