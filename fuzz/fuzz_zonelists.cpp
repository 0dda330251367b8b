// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzzing.h"
#include "roonzone.h"
#include "roonzones.h"

#include <QSet>

#include <memory>

/*
 * The JSON of zones: the first line is a list of available zones, the second the outputs of one,
 * the third is a zone's display name.
 */

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    Fuzzing::start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QList<QByteArray> parts = Fuzzing::bytes(data, size).split('\n');
    const QString wanted = QString::fromUtf8(parts.value(2));
    RoonZones zones;
    for (const char *const id : { "", "a", "b", "1601a7c2" }) {
        auto zone = std::make_unique<RoonZone>(QString::fromLatin1(id));
        zone->setOutputs(parts.value(1));
        if (zones.add(zone.get()))
            zone.release();
    }
    zones.updateAvailableZones(parts.value(0));

    const QStringList names = zones.availableNames();
    Fuzzing::require(!names.contains(QString()), "listed zones have names");
    Fuzzing::require(QSet<QString>(names.begin(), names.end()).size() == names.size(),
        "each name is listed once");
    Fuzzing::require(names.isEmpty() || names.size() <= parts.value(0).size() / 2,
        "there are no more zones than the list has room for");
    const QString id = zones.findZoneByDisplayName(wanted);
    Fuzzing::require(id == zones.idByDisplayName(wanted), "both look-ups find the same zone");
    for (const QString &name : names) {
        const RoonZone *const zone = zones.find(zones.idByDisplayName(name));
        Fuzzing::require(
            !zone || zone->id() == zones.idByDisplayName(name), "zones lie under their ids");
    }
    return 0;
}
