// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class Broker;
class Display;
class Report;

/**
 * Messages per second from the broker into the player's properties, the player page on view,
 * against mosquitto_sub reading the same stream from the same broker, on which the playing zone has
 * been published. False, with a message, when it could not be measured or a message was lost.
 */
bool measureThroughput(Broker &broker, const Display &display, Report &report);
