// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/**
 * A message of what a playing zone publishes, many hours of it: the position in the track, a volume
 * that is turned, titles. Each changes a property that the player notifies.
 */
struct StreamMessage {
    /** So many of them are counted at once; their mix repeats with twenty. */
    static constexpr int Window = 100;

    QString topic;
    QByteArray payload;

    /** The message of this number, from 0 on, of the zone with this id. */
    static StreamMessage numbered(int number, const QString &zoneId);
};
