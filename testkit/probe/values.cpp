// SPDX-License-Identifier: GPL-3.0-or-later
#include "testkit/probe/values.h"

#include <QMetaObject>
#include <QObject>

QJsonValue toJson(const QVariant &value)
{
    if (QMetaType::typeFlags(value.userType()) & QMetaType::PointerToQObject) {
        const QObject *const object = value.value<QObject *>();
        return object ? QJsonValue(QLatin1String(object->metaObject()->className())) : QJsonValue();
    }
    if (value.userType() == QMetaType::Float)
        return static_cast<double>(value.toFloat());
    if (QMetaType::typeFlags(value.userType()) & QMetaType::IsEnumeration)
        return value.toInt();
    const QJsonValue json = QJsonValue::fromVariant(value);
    if (json.isNull() && value.canConvert<QString>())
        return value.toString();
    return json;
}
