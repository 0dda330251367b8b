// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class BrokerClient;
class Display;
class Report;

/**
 * How long a touch takes to become a command at the broker, and a message to be shown, one at a
 * time, on the player page. The playing zone must have been published on the broker. False, with
 * a message, when it could not be measured.
 */
bool measureLatency(BrokerClient &services, const Display &display, Report &report);
