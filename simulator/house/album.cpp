// SPDX-License-Identifier: GPL-3.0-or-later
#include "simulator/house/album.h"

#include <QCryptographicHash>

QByteArray Album::imageKey() const
{
    if (!hasCover)
        return "NO_IMAGE";
    // As opaque as a music server's keys, and the same in every run.
    return QCryptographicHash::hash(
        (artist + QLatin1Char('/') + name).toUtf8(), QCryptographicHash::Md5)
        .toHex();
}
