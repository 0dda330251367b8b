// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

/** Where the scenarios that come with the program lie: in the source tree, or installed. */
namespace ScenarioLibrary {

/** The folder in use; empty when there is none. */
QString folder();

/** The names of all scenarios in it, sorted, without ".json". */
QStringList names();

/** The file of a scenario; @p name may be a file itself.  Empty when there is neither. */
QString file(const QString &name);

} // namespace ScenarioLibrary
