// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QGenericPlugin>

/**
 * Brings a ProbeServer into the unmodified program: Qt loads this plugin while it constructs the
 * application object, when QT_QPA_GENERIC_PLUGINS names "touchuiprobe" and QT_PLUGIN_PATH leads
 * here.
 *
 * The server listens on the local socket whose path is in TOUCHUI_PROBE_SOCKET.  Without that
 * variable the plugin does nothing.  The plugin itself never logs: what the program logs is under
 * test.
 */
class ProbePlugin : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "probe.json")

public:
    QObject *create(const QString &key, const QString &arguments) override;
};
