// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/probe/probe.h"

#include <QColor>
#include <QRectF>

/** What is seen in the player page's frame for the cover. */
namespace CoverView {

/** The frame's inside, in the window. */
QRectF area(Probe &probe);

/**
 * Whether a square cover of one colour is seen. The logo is not of one colour, and has none of its
 * own in its corner, which is looked at.
 */
bool shows(Probe &probe, const QColor &colour);

bool showsLogo(Probe &probe);

} // namespace CoverView
