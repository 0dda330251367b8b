// SPDX-License-Identifier: GPL-3.0-or-later
#include "playingzone.h"

#include "eventwait.h"
#include "simulator/services/topics.h"
#include "testkit/services/opening.h"

QString PlayingZone::name()
{
    return QStringLiteral("Kitchen");
}

QString PlayingZone::id()
{
    return QStringLiteral("z1");
}

void PlayingZone::play(BrokerClient &services, int seconds)
{
    for (int second = 1; second <= seconds; ++second) {
        services.publish(
            topic(QStringLiteral("nowPlaying/seekPosition")), QByteArray::number(second), true);
        serveEvents(1000);
    }
}

QString PlayingZone::topic(const QString &key)
{
    return Topics::zone(id(), key.toLatin1());
}

bool PlayingZone::publish(BrokerClient &services)
{
    m_images.setBehaviour(QStringLiteral("cover"), {}); // the key of the opening's track
    return Opening::publish(services, QStringLiteral("playing"), m_images.address());
}
