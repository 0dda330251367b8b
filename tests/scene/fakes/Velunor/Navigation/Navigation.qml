// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick 2.15

QtObject {
    /** What the scene called, in order: the name, and the argument if there is one. */
    property var calls: []
    /** What happens inside a call of cycleDisplayOutput(), as the program changes the page there. */
    property var answerCycle: null

    signal setScreen(string newScreen)

    function record(call) { calls.push(call); }

    function screenChanged(name) { record("screenChanged " + name); }
    function clickedGotoSettings() { record("clickedGotoSettings"); }
    function clickedLeaveSettings() { record("clickedLeaveSettings"); }
    function leaveScreenSaver() { record("leaveScreenSaver"); }
    function cycleDisplayOutput() {
        record("cycleDisplayOutput");
        if (answerCycle)
            answerCycle();
    }
    function blankScreen() { record("blankScreen"); }
}
