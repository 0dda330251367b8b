// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

/** What callgrind has counted between two requests of the program that it runs. */
struct CallgrindProfile {
    QByteArray name;         ///< that the program has given it; empty when it has not
    qint64 instructions = 0; ///< 0 when there are none, or the text is no profile

    /** Reads one of the files that callgrind writes. */
    static CallgrindProfile parsed(const QByteArray &text);
};
