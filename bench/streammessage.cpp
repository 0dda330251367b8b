// SPDX-License-Identifier: GPL-3.0-or-later
#include "streammessage.h"

#include "simulator/services/topics.h"

StreamMessage StreamMessage::numbered(int number, const QString &zoneId)
{
    const QByteArray text = QByteArray::number(number);
    if (number % 20 == 10)
        return { Topics::zone(zoneId, "volume/value"), QByteArray::number(41 + number / 20 % 50) };
    if (number % 20 == 0)
        return { Topics::zone(zoneId, "nowPlaying/song"), "Track number " + text };
    return { Topics::zone(zoneId, "nowPlaying/seekPosition"), text };
}
