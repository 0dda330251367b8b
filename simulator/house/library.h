// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "simulator/house/album.h"
#include "simulator/house/zonedescription.h"

#include <QStringList>
#include <QVector>

/**
 * The music and the zones of a house that does not exist. All names are invented.
 *
 * The choice is meant to be awkward: very long and very short titles, right-to-left and East Asian
 * scripts, accents, markup in a title, a missing cover, an hour-long track, a radio.
 */
namespace Library {

/** All albums, the radio stations last; the same in every run. */
const QVector<Album> &albums();

/** Their names, in the same order. */
QStringList albumNames();

/** The album of that name (exactly); null when there is none. */
const Album *findAlbum(const QString &name);

/** All zones; the first is the one the appliance itself plays in. */
const QVector<ZoneDescription> &zones();

} // namespace Library
