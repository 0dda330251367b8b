// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** One of the two icons beside the volume slider. */
IconButton {
    /** Takes the icon away from a finger that holds it: its lifting is no tap then. */
    function interrupt() {
        // An item that is disabled is taken away from the finger that holds it.
        enabled = false;
        enabled = true;
    }

    width: 75
    height: 75
}
