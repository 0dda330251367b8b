// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/**
 * What a publisher can add to a message in MQTT 5.  Older protocols, the only ones spoken here,
 * have no place for it, so that it holds nothing: it is here for the form of QMqttClient::publish()
 * that takes it.
 */
class QMqttPublishProperties { };
