// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

/** Covers for albums that nobody ever recorded. */
namespace CoverArt {

/**
 * A picture of its own for each key, the same on every call; any bytes are a key. A size that is
 * not square is filled from the middle of the square picture.
 */
QImage draw(const QByteArray &key, const QSize &size);

} // namespace CoverArt
