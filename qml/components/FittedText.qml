// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** One line in its full size where it fits the given width, and smaller where it does not: it is never cut. */
PageText {
    fontSizeMode: Text.HorizontalFit
    minimumPixelSize: 8
}
