// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

/** A JSON value of any type as it would stand in a file, for quoting in a complaint. */
inline QString jsonText(const QJsonValue &value)
{
    // A document cannot be a bare value: an array of one, without its brackets.
    return QString::fromUtf8(
        QJsonDocument(QJsonArray { value }).toJson(QJsonDocument::Compact).mid(1).chopped(1));
}
