// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "studio.h"

#include <QString>
#include <QVector>

#include <functional>

/** One picture: its name, and how to get there from the one before. */
struct Shot {
    QString name;
    std::function<bool(Studio &)> arrange;
};

/** Every page and pop-up, in an order in which one run of the program can show them. */
QVector<Shot> gallery();
