// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "testkit/machine/display.h"
#include "testkit/process/program.h"

/** The programs that are measured, in surroundings that are the same for both. */
namespace Subject {

enum Platform {
    OpenGl,   ///< on a display
    Offscreen ///< without one, drawn by Qt's software renderer
};

/** Readies the program as it is delivered: no debug log, no probe. */
void prepareProgram(Program &program, Platform platform, const Display &display);
/** The same with the probe loaded, which makes the program larger and its start longer. */
void prepareProbedProgram(Program &program, Platform platform, const Display &display);
/** What the one text of the bare window does. */
enum Motion {
    Still,
    Ticking, ///< changes once a second
    Running, ///< moves from right to left, again and again
};
/** Readies the window with one text instead. */
void prepareBareWindow(
    Program &program, Platform platform, const Display &display, Motion motion = Still);

/** Starts a program and waits until it says READY=1; false when it never does. */
bool startUntilReady(Program &program);
/** Waits until the player page is on view and has its cover; false when that never comes. */
bool showsPlayer(Program &program);

} // namespace Subject
