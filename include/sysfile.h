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
    /** A writer without a file; until setFileName() gives it one, every write fails. */
    SysFile();
    /** A writer to the attribute at the path @p fileName, which need not be there yet. */
    explicit SysFile(const QString &fileName);

    /**
     * Writes @p value in decimal, nothing else. An attribute that cannot be opened is logged as a
     * warning and never created; an error after that is not noticed.
     */
    void write(uint value);
};
