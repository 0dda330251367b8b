// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QVector>

/**
 * The value that the given part of the samples does not exceed: 0.5 is the median, 0.99 leaves one
 * sample in a hundred above it. There must be at least one sample.
 */
double quantile(QVector<double> samples, double part);

inline double median(const QVector<double> &samples)
{
    return quantile(samples, 0.5);
}
