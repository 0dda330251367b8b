// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/** What is fixed about a zone's volume control, in the zone's own units. */
struct VolumeRange {
    bool available = true;      ///< false: only the amplifier itself sets the volume
    QByteArray type = "number"; ///< or "db"
    double min = 0;
    double max = 100;
    double hardLimitMin = 0;
    double hardLimitMax = 100;
    double softLimit = 100;
    double step = 1;
    double start = 30; ///< the value at start-up
};

/** A playback zone as the house has it, before anything plays. */
struct ZoneDescription {
    QString id; ///< what a music server would make up; fixed here, so that scenarios can name it
    QString name;
    VolumeRange volume;
};
