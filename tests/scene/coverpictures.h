// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QQuickImageProvider>

/**
 * Stands in for the album art: the logo under its own key, a null picture under "broken", white to
 * three quarters of its width and black beyond under "edge", else a gradient per key.
 */
class CoverPictures : public QQuickImageProvider {
public:
    CoverPictures();

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};
