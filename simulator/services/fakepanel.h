// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QString>

/**
 * A display panel as the kernel shows one: a directory "simulated-panel" with the attributes
 * "brightness" and "bl_power", which the display writes. Reports what is written.
 */
class FakePanel : public QObject {
    Q_OBJECT

public:
    explicit FakePanel(QObject *parent = nullptr);

    /**
     * Makes the panel in a directory that stands in for /sys/class/backlight; false, with the
     * reason, when that fails.
     */
    bool create(const QString &directory, QString *problem);

signals:
    /** One line for people. */
    void told(const QString &line);

private:
    void read(const QString &file);

    QFileSystemWatcher m_watcher;
    QHash<QString, QByteArray> m_values; // by file, what was reported last
};
