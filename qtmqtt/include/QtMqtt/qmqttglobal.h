// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>

namespace QMqtt {
Q_NAMESPACE

/** How far a published message has come. */
enum class MessageStatus : quint8 {
    Unknown = 0,
    Published,
    /** At quality of service 1: the broker has it. */
    Acknowledged,
    Received,
    Released,
    /** At quality of service 2: the broker has it, and has it once. */
    Completed
};
Q_ENUM_NS(MessageStatus)
} // namespace QMqtt
