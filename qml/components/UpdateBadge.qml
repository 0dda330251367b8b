// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** Offers to install an update. */
Rectangle {
    id: root

    /** A tap. */
    signal touched()

    color: Theme.badge
    radius: 10
    border.width: 1
    border.color: Theme.badgeBorder

    PageText {
        anchors.centerIn: parent
        color: Theme.badgeText
        font.pixelSize: root.height / 2
        text: qsTr("Update Available!")
    }

    TouchArea {
        onTouched: root.touched()
    }
}
