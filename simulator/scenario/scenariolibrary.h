// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/** Where the scenarios that come with the program lie: installed, or in the source tree. */
namespace ScenarioLibrary {

/** The folders in which they are looked for, in this order. */
QStringList places();

/** The first of them that is there; empty when none is. */
QString folder();

/** The names of all scenarios in it, sorted, without ".json". */
QStringList names();

/** The file of a scenario; @p name may be a file itself. Empty when there is neither. */
QString file(const QString &name);

} // namespace ScenarioLibrary
