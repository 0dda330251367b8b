// SPDX-License-Identifier: GPL-3.0-or-later
#include "playingzone.h"

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

QString PlayingZone::topic(const QString &key)
{
    return Topics::zone(id(), key.toLatin1());
}

bool PlayingZone::publish(BrokerClient &services)
{
    m_images.setBehaviour(QStringLiteral("cover"), {}); // the key of the opening's track
    return Opening::publish(services, QStringLiteral("playing"), m_images.address());
}
