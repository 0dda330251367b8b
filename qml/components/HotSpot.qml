// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** An invisible square that answers taps. */
Item {
    id: root

    /** A tap. */
    signal touched()

    height: width

    TouchArea {
        onTouched: root.touched()
    }
}
