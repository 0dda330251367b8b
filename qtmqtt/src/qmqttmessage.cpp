// SPDX-License-Identifier: GPL-3.0-or-later
#include <QtMqtt/qmqttmessage.h>

bool QMqttMessage::operator==(const QMqttMessage &other) const
{
    return m_id == other.m_id && m_qos == other.m_qos && m_retain == other.m_retain
        && m_duplicate == other.m_duplicate && m_topic == other.m_topic
        && m_payload == other.m_payload;
}
