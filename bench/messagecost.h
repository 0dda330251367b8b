// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class Report;

/**
 * Instructions that a message costs from its dispatch on, after few messages and after many, and
 * beside few zones and many; counted, not timed, so that the machine's load does not matter. False,
 * with a message, when it could not be measured.
 */
bool measureMessageCost(Report &report);
