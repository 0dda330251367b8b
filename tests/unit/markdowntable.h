// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/**
 * The rows of the first table in a document whose first column has the given head, as trimmed
 * cells, the heads first.  Empty when there is no such table, or no document.
 */
QList<QStringList> markdownTable(const QString &path, const QString &firstHead);
