// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>
#include <QString>

/**
 * Writes one unsigned number to one kernel attribute, such as a backlight's brightness.
 *
 * Each write opens, writes and closes the file, so that the kernel sees one complete write for each
 * value and no descriptor stays open in between. Main thread only.
 */
class SysFile : public QFile {
    Q_OBJECT

public:
    /** A writer without a file; setFileName() gives it one. Until then every write fails with the
     * warning. */
    SysFile();
    explicit SysFile(const QString &fileName);

    /** Writes @p value in decimal, nothing else. An attribute that cannot be opened is logged as a
     * warning. */
    void write(uint value);
};
