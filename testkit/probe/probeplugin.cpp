// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/probeplugin.h"

#include "testkit/probe/liveobjects.h"
#include "testkit/probe/probeserver.h"

QObject *ProbePlugin::create(const QString &key, const QString &arguments)
{
    Q_UNUSED(arguments)
    if (key.compare(QLatin1String("touchuiprobe"), Qt::CaseInsensitive) != 0
        || !qEnvironmentVariableIsSet("TOUCHUI_PROBE_SOCKET")) {
        return nullptr;
    }
    LiveObjects::startRecording();
    return new ProbeServer(qEnvironmentVariable("TOUCHUI_PROBE_SOCKET"));
}
