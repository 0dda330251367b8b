// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QSize>
#include <QString>

/** The size in pixels in which covers are asked for; the core scales them. */
constexpr QSize ShownCoverSize(402, 402);
/** A size in pixels that fills a whole screen. */
constexpr QSize FullScreenCoverSize(800, 480);

/**
 * Where the core's image service offers the cover of the key @p key, fitted into @p size pixels: an
 * HTTP address under the core's present serverUrl(). Nothing is escaped, and an empty key or server
 * is not treated specially.
 */
QString coverAddress(const QString &key, const QSize &size);
