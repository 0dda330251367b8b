// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class BrokerClient;
class Display;
class Report;

/**
 * Memory with the player page on view, its cover loaded and blurred, against the bare window, in
 * turns. The playing zone must have been published on the broker. False, with a message, when it
 * could not be measured.
 */
bool measureMemory(BrokerClient &services, const Display &display, Report &report);
