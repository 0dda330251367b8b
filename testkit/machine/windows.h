// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class QString;

/**
 * Asks every window of that X display to close, as a window manager does when somebody closes it;
 * false when there is none.
 */
bool closeWindows(const QString &displayName);
