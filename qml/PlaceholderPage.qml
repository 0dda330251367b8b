// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** A black page with its title. */
Rectangle {
    id: root

    property string title

    color: Theme.background

    PageText {
        anchors.centerIn: parent
        font.pixelSize: root.width / 20
        text: root.title
    }
}
