// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

/** A box of the clock page with a text in its middle, which may reach beyond the box as far as there is room. */
Item {
    id: root

    property alias text: label.text
    property alias color: label.color
    property alias pixelSize: label.font.pixelSize
    /** Width from which on the text becomes smaller. */
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
