// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtMqtt/QMqttClient>

/** Has the client connect to this port of 127.0.0.1. */
void aim(QMqttClient *client, quint16 port);

/** A port of 127.0.0.1 on which nobody listens. */
quint16 deafPort();
