// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVariant>

/**
 * A value of the same type that differs from @p current: true for false, false for true, a number
 * one and a half above, an accented text.
 */
inline QVariant sampleValue(const QVariant &current)
{
    switch (static_cast<QMetaType::Type>(current.userType())) {
    case QMetaType::Bool:
        return !current.toBool();
    case QMetaType::Float:
        return current.toFloat() + 1.5f;
    case QMetaType::UInt:
        return current.toUInt() + 1u;
    case QMetaType::Int:
        return current.toInt() - 1;
    default:
        return QVariant(current.toString() + QStringLiteral("Küche"));
    }
}
