// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mqtt.h"

#include <QTest>

/**
 * Where there is no broker: waits until the attempt to connect has failed, so that its lines in the
 * log are over before the first test.
 */
inline void waitForTheFailureOf(const Mqtt *mqtt)
{
    const auto *const client = mqtt->findChild<QMqttClient *>();
    QTRY_COMPARE(client->error(), QMqttClient::TransportInvalid);
}
