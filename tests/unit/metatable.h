// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMetaObject>
#include <QStringList>

// The scene and the messaging reach objects by name and position, so a class's meta-object is an
// interface.  Each function writes down what the class itself adds, without what it inherits, one
// text an entry, in meta-object order, for comparison with a table in the test.

/**
 * The properties: type, name, "read", "write" or both, then the notify signal's signature,
 * "constant" or nothing: "QString serverName read write", "uint width read write widthChanged()". A
 * property that is not designable, not scriptable or not stored says so at the end.
 */
QStringList propertyTable(const QMetaObject &metaObject);

/**
 * Signals, slots and invokable methods: access, kind and signature, and the return type unless it
 * is void: "public signal zonesChanged()", "private slot onFinish(QNetworkReply*)", "public method
 * bool zoneFound()". The short forms that default arguments give rise to follow their full form,
 * with " cloned" at the end.
 */
QStringList methodTable(const QMetaObject &metaObject);

/** The values of the enumerations: "Screen::Welcome 10". */
QStringList enumeratorTable(const QMetaObject &metaObject);
