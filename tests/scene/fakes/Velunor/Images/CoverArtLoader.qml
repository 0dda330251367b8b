// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** Has every picture at the next turn of the event loop. */
QtObject {
    id: root

    property url wanted
    readonly property url source: arrived.picture
    readonly property bool waiting: source !== wanted
    property QtObject arrived: Timer {
        property url picture

        interval: 0
        onTriggered: picture = root.wanted
    }

    onWantedChanged: arrived.restart()
}
