// SPDX-License-Identifier: GPL-3.0-or-later
#include "coveraddress.h"

#include "roon.h"

QString coverAddress(const QString &key, const QSize &size)
{
    return QStringLiteral("http://") + Roon::instance()->serverUrl() + QStringLiteral("/image/")
        + key
        + QStringLiteral("?scale=fit&width=%1&height=%2&format=image/jpeg")
              .arg(size.width())
              .arg(size.height());
}
