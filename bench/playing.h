// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class BrokerClient;
class Display;
class Report;

/**
 * Processor time that the player page takes while a track is played: with a title that stands, and
 * with one that runs, over a blurred background and without one; against a bare window whose text
 * changes or runs as often. The playing zone must have been published on the broker. False, with a
 * message, when it could not be measured.
 */
bool measurePlaying(BrokerClient &services, const Display &display, Report &report);
