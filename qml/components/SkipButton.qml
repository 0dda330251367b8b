// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** Previous or next in the transport row. */
IconButton {
    width: parent.width / 3
    height: parent.height
    iconFraction: 0.8
    iconOpacity: Theme.iconOpacity
    touchMargin: Theme.touchMargin
}
