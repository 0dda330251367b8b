// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class BrokerClient;
class Display;
class PlayingZone;
class Report;

/**
 * How long it takes from what decides on another page to the first frame that shows all of it, and
 * how long the panel shows neither page; each way through the pages. The playing zone must have
 * been published on the broker. False, with a message, when it could not be measured.
 */
bool measurePageSwitches(
    BrokerClient &services, PlayingZone &zone, const Display &display, Report &report);
