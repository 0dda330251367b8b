// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class Display;
class Report;

/**
 * Time from the start of the process to READY=1, and to the first frame that shows the first page
 * as it stays, against the bare window, in turns. The broker must be running. False, with a
 * message, when it could not be measured.
 */
bool measureStartup(const Display &display, Report &report);
