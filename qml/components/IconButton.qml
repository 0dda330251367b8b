// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** An icon that answers taps: in its whole cell, and even while the icon is hidden. */
CellIcon {
    id: root

    /** Pixels by which the touch area reaches beyond the cell. */
    property alias touchMargin: touchArea.margin

    /** A tap. */
    signal touched()

    TouchArea {
        id: touchArea

        onTouched: root.touched()
    }
}
