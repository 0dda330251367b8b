// SPDX-License-Identifier: GPL-3.0-or-later
#include "playingzone.h"

#include "testkit/services/opening.h"

QString PlayingZone::name()
{
    return QStringLiteral("Kitchen");
}

QString PlayingZone::topic(const QString &key)
{
    return QStringLiteral("Velunor/Controller/remote_control/v4/roon/Zones/z1/") + key;
}

bool PlayingZone::publish(BrokerClient &services)
{
    m_images.setBehaviour(QStringLiteral("cover"), {}); // the key of the opening's track
    return Opening::publish(services, QStringLiteral("playing"), m_images.address());
}
