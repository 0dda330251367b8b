// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** A box of the layout with one scrolling label in it. */
LayoutBox {
    // Those of the Marquee.
    property alias bold: marquee.bold
    property alias pixelSize: marquee.pixelSize
    property alias scrollDuration: marquee.scrollDuration
    property alias scrollingEnabled: marquee.scrollingEnabled
    property alias text: marquee.text
    property alias textColor: marquee.textColor

    Marquee {
        id: marquee

        objectName: "marquee"
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        family: Theme.fontFamily
    }
}
