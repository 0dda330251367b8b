// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>

namespace QMqtt {
Q_NAMESPACE

/** How far a published message has come.  Only Acknowledged and Completed are told. */
enum class MessageStatus : quint8 {
    Unknown = 0,
    /** It has left. */
    Published,
    /** At quality of service 1: the broker has it. */
    Acknowledged,
    /** At quality of service 2: the broker has it, and may get it again. */
    Received,
    /** At quality of service 2: the client will not send it again. */
    Released,
    /** At quality of service 2: the broker has it, and has it once. */
    Completed
};
Q_ENUM_NS(MessageStatus)
} // namespace QMqtt
