// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** How much of the track has been played. */
Rectangle {
    id: root

    /** Seconds. */
    property real seekPosition: 0
    /** Seconds; 0 when unknown. */
    property real length: 0

    color: Theme.invisible
    radius: 1
    border.width: 1
    border.color: Theme.accent
    // A position beyond the end stays inside the bar.
    clip: true

    Rectangle {
        objectName: "progressFill"
        x: 1
        y: 1
        width: root.length > 0 ? Math.floor(root.seekPosition / root.length * root.width) : 0
        height: root.height - 2
        color: Theme.accent
    }
}
