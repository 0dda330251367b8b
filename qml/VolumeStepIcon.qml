// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** One of the two icons beside the volume slider. */
IconButton {
    width: 75
    height: 75
}
