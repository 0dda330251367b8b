// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDir>

/**
 * Compares each picture in @p baselines with the one of its name in @p taken, and says what
 * differs.  A pixel may differ a little everywhere, and much in a few places, since fonts and
 * drivers differ between machines.  Of a picture that differs more, the difference is left beside
 * it as NAME.difference.png.  False when any does, or is missing.
 */
bool compareWithBaselines(const QDir &taken, const QDir &baselines);
