// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** One of the three equal cells of the option row. */
IconButton {
    width: parent.width / 3
    height: parent.height
    iconFraction: 0.4
    iconOpacity: Theme.iconOpacity
}
