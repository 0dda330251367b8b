// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/** A listener's command, as it comes over the broker. */
struct RemoteCommand {
    enum Kind {
        Invalid, ///< see error
        PlayPause,
        Previous,
        Next,
        SetRadio,
        SetShuffle,
        SetLoop,
        SetVolume,
        ChangeVolume,
        ToggleStandby ///< meant for the display, not for the music
    };

    Kind kind = Invalid;
    QString zoneId;   ///< empty for ToggleStandby
    bool on = false;  ///< SetRadio, SetShuffle
    QString mode;     ///< SetLoop, as it came
    double value = 0; ///< SetVolume, ChangeVolume
    QString error;    ///< what is wrong with an Invalid one, in words

    /** Takes any bytes; what is not a command becomes an Invalid one. */
    static RemoteCommand parse(const QByteArray &payload);
    /** For people: "set volume to 33". */
    QString text() const;
};
