// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QImage>
#include <QRectF>
#include <QStringList>

/**
 * Which of these pictures, named by their files in the checkout, is seen in that area of a black
 * page, fitted into it: the one that comes nearest, pixel by pixel.  Empty where none comes near.
 */
QString drawnFile(
    const QImage &page, const QRectF &area, const QStringList &files, double opacity = 1);

/**
 * Whether that area of a black page has nothing on it.  False for one that lies beside the page.
 */
bool isBlank(const QImage &page, const QRectF &area);
