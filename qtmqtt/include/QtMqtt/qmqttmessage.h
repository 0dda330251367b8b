// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "qmqtttopicname.h"

#include <QtCore/QByteArray>
#include <QtCore/QMetaType>

/** A received message.  A value; a copy shares its texts. */
class QMqttMessage {
public:
    /** One without a topic and a payload, at quality of service 0. */
    QMqttMessage() = default;

    /** The bytes as published; empty, but not null, if there were none. */
    QByteArray payload() const { return m_payload; }
    /** Where it was published, without wildcards. */
    QMqttTopicName topic() const { return m_topic; }
    /** 0, 1 or 2: the quality of service of this delivery. */
    quint8 qos() const { return m_qos; }
    /** The packet id, 1 to 65535; 0 at quality of service 0. */
    quint16 id() const { return m_id; }
    /** True if the broker had kept the message and sent it because of a new subscription. */
    bool retain() const { return m_retain; }
    /**
     * True if the broker marked this as a repeated delivery; never at quality of service 2, where
     * the repeated ones are left out.
     */
    bool duplicate() const { return m_duplicate; }

    /** Equal in all that the functions above tell. */
    bool operator==(const QMqttMessage &other) const;
    bool operator!=(const QMqttMessage &other) const { return !(*this == other); }

private:
    friend class QMqttConnection;

    QMqttTopicName m_topic;
    QByteArray m_payload;
    quint16 m_id = 0;
    quint8 m_qos = 0;
    bool m_retain = false;
    bool m_duplicate = false;
};

Q_DECLARE_METATYPE(QMqttMessage)
