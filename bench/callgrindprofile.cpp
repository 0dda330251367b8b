// SPDX-License-Identifier: GPL-3.0-or-later
#include "callgrindprofile.h"

#include <QList>

CallgrindProfile CallgrindProfile::parsed(const QByteArray &text)
{
    static const QByteArray Name = "desc: Trigger: Client Request: ";
    static const QByteArray Totals = "totals: ";
    CallgrindProfile profile;
    const QList<QByteArray> lines = text.split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(Name))
            profile.name = line.mid(Name.size());
        else if (line.startsWith(Totals))
            profile.instructions = line.mid(Totals.size()).toLongLong();
    }
    return profile;
}
