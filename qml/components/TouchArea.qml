// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** Answers a tap on its parent and around it. */
MouseArea {
    id: root

    /** Pixels by which it reaches beyond its parent on each side. */
    property real margin: 0

    /** A tap: a finger was put down and lifted in the area. */
    signal touched()

    anchors.fill: parent
    anchors.margins: -margin
    onClicked: root.touched()
}
