// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QJsonValue>
#include <QVariant>

/**
 * A property's value as JSON: what JSON knows as it is, colours and addresses as text, an object as
 * its class name, a missing property as null.
 */
QJsonValue toJson(const QVariant &value);
