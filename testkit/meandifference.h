// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QImage;

/**
 * How far apart two pictures of one size are, as people see them: the mean of all channels, 0 to
 * 255.
 */
double meanDifference(const QImage &one, const QImage &other);
