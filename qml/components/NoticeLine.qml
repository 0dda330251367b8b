// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/**
 * One line of a notice. A text too long for the line becomes smaller and takes a second line; only what does not fit
 * then is cut, with an ellipsis.
 */
LayoutBox {
    id: root

    /** With bold parts in `<b>` tags; what it quotes from outside has to be escaped. */
    property alias text: label.text

    PageText {
        id: label

        objectName: "text"
        anchors.fill: parent
        color: Theme.secondaryText
        elide: Text.ElideRight
        font.pixelSize: root.width / 32
        fontSizeMode: Text.Fit
        minimumPixelSize: root.width / 68
        textFormat: Text.StyledText
        wrapMode: Text.Wrap
    }
}
