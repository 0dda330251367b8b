// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class BrokerClient;
class Display;
class Report;

/**
 * What the program does while nothing happens: a paused zone, the clock, the dark panel. The
 * playing zone must have been published on the broker; it is paused then. False, with a message,
 * when it could not be measured.
 */
bool measureIdle(BrokerClient &services, const Display &display, Report &report);
