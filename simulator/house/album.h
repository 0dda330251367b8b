// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QVector>

/** One piece of music, or one programme of an internet radio. */
struct Track {
    QString song;
    /** Above 0; a programme lasts a while as well, although its length is not published. */
    int seconds = 0;
};

/** What can be put into a zone's queue as a whole. */
struct Album {
    QString name;
    QString artist;
    QVector<Track> tracks; ///< never empty
    /** An internet radio: no length, no seeking, nothing before or after it. */
    bool radio = false;
    /** False: nobody ever scanned a cover, and the picture service has none. */
    bool hasCover = true;

    /** The key of the cover at the picture service; "NO_IMAGE" when there is none. */
    QByteArray imageKey() const;
};
