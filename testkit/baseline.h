// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QImage;
class QString;

/** Pictures of the pages that are known to be right, in tests/pictures/baselines. */
namespace Baseline {

/**
 * How much of a picture differs from another of its size, 0 to 1.  A pixel may differ a little
 * everywhere, since fonts and drivers differ between machines.  Where @p differences is given, it
 * becomes a picture of the differences.
 */
double differingShare(const QImage &picture, const QImage &other, QImage *differences = nullptr);

/** Whether two pictures show the same: only in a few places may they differ much. */
bool isAlike(const QImage &picture, const QImage &other);

/** A baseline by the name of its page and panel: "player-800x480".  Ends the test without it. */
QImage named(const QString &name);

} // namespace Baseline
