// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** A box of the clock page with a text in its middle, which may reach beyond the box as far as there is room. */
Item {
    id: root

    // The text, in one line, with its colour; the pixel size is that which it has where there is room.
    property alias text: label.text
    property alias color: label.color
    property alias pixelSize: label.font.pixelSize
    /** Width beyond which the text becomes smaller. */
    property alias room: label.width

    FittedText {
        id: label

        objectName: "text"
        anchors.centerIn: parent
        horizontalAlignment: Text.AlignHCenter
        // Scaled up from a distance field, digits of this size get corners.
        renderType: Text.NativeRendering
    }
}
