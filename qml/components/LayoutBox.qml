// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** A box of the layout: invisible, unless its outline is switched on to see where it lies. */
Rectangle {
    /** Whether the outline is shown, for work on the layout. */
    property bool outlined: false
    /** Colour of the outline. */
    property color outlineColor: Theme.debugOutline

    color: Theme.invisible
    border.width: outlined ? 2 : 0
    border.color: outlined ? outlineColor : Theme.invisible
}
