// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/services/brokerclient.h"
#include "testkit/services/imageserver.h"

/**
 * A music server that has been found, and one zone of it that plays a track with cover art:
 * scenarios/openings/playing.json.
 */
class PlayingZone {
public:
    /** The zone's display name. */
    static QString name();
    /** Its id, by which it is addressed. */
    static QString id();
    /** Goes on in its track for a time, in which events are served. */
    static void play(BrokerClient &services, int seconds);
    /** The topic of one of the zone's keys, for example "nowPlaying/song". */
    static QString topic(const QString &key);

    /** Publishes everything, kept by the broker; false when the broker does not confirm it. */
    bool publish(BrokerClient &services);

private:
    ImageServer m_images;
};
