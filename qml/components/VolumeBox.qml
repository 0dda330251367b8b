// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** The volume in the middle of the player: hardly seen, until a change lights it up for a moment. */
LayoutBox {
    id: root

    /** The volume, ready to be shown; empty for none. */
    property string volumeText
    /** Pixels; the two cells are equal, and overlap. */
    readonly property real cellWidth: (width + cells.overlap) / 2

    /** A tap. */
    signal touched()

    /** Lights the box up for 2.5 seconds from now. */
    function highlight() {
        highlightTimer.restart();
    }

    opacity: highlightTimer.running ? 1.0 : 0.1

    Row {
        id: cells

        readonly property int overlap: 15

        anchors.fill: parent
        spacing: -overlap

        CellIcon {
            objectName: "volumeIcon"
            width: root.cellWidth
            height: parent.height
            outlined: root.outlined
            source: "../../icons/baseline_volume_up_white_48.png"
        }

        PageText {
            objectName: "volumeText"
            width: root.cellWidth
            height: parent.height
            font.bold: true
            font.pixelSize: root.cellWidth / 2.5
            text: root.volumeText
        }
    }

    TouchArea {
        onTouched: root.touched()
    }

    Timer {
        id: highlightTimer

        objectName: "highlightTimer"
        interval: 2500
    }
}
