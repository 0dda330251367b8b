// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaProperty>
#include <QVariant>

/** A value of the property's type that differs from what the property holds at the start: true for
 * false, false for true, a number one and a half above, an accented text. */
inline QVariant sampleValue(const QObject &object, const QMetaProperty &property)
{
    const QVariant current = property.read(&object);
    switch (static_cast<QMetaType::Type>(property.userType())) {
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
