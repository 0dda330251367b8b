// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/**
 * A display panel as the kernel shows it: a directory below /sys/class/backlight with the
 * attributes "brightness" and "bl_power", here plain files.  The panel goes with the object.
 */
class Panel {
public:
    /**
     * Creates the panel, with both attributes empty.  Ends the test program when that is
     * impossible.
     */
    explicit Panel(const QString &name = QStringLiteral("panel0"));
    ~Panel();
    Panel(const Panel &) = delete;
    Panel &operator=(const Panel &) = delete;

    /** What the attribute holds, byte for byte. */
    QByteArray brightness() const;
    QByteArray power() const;

    /**
     * Replaces both attributes by directories: every open for writing then fails, for root as well.
     */
    void makeUnwritable();

    /** Takes the panel away, as the kernel does with a device that is unplugged. */
    void remove();
    /** Puts it back, with both attributes empty. */
    void create();

private:
    QString attribute(const QString &name) const;

    QString m_directory;
};
