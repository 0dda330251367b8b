// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QMetaType>

/**
 * What a broker can add to a confirmation in MQTT 5.  Older protocols, the only ones spoken here,
 * have no place for it, so that it holds nothing: it is an argument of
 * QMqttClient::messageStatusChanged().
 */
class QMqttMessageStatusProperties { };

Q_DECLARE_METATYPE(QMqttMessageStatusProperties)
