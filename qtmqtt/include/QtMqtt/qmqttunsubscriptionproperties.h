// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/**
 * What can be added to the end of a subscription in MQTT 5.  Older protocols, the only ones spoken
 * here, have no place for it, so that it holds nothing: it is here for the form of
 * QMqttClient::unsubscribe() that takes it.
 */
class QMqttUnsubscriptionProperties { };
