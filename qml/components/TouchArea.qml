// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** Answers a tap on its parent, and `margin` pixels around it. */
MouseArea {
    id: root

    property real margin: 0

    signal touched()

    anchors.fill: parent
    anchors.margins: -margin
    onClicked: root.touched()
}
