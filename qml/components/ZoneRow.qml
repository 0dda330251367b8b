// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/** A name in the zone chooser. Only a tap chooses it: a finger that moves is scrolling, or has changed its mind. */
Item {
    id: root

    /** Plain text; what does not fit is cut, with an ellipsis. */
    property string name
    /** Size of the name. */
    property alias pixelSize: label.font.pixelSize

    /** A tap; the name is the one that was pressed, even if the row has another by now. */
    signal chosen(string name)

    PageText {
        id: label

        anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
        color: Theme.popupText
        elide: Text.ElideRight
        text: Format.beginning(root.name)
    }

    TouchArea {
        property bool resting: false
        property point pressedAt
        // The list may change under the finger.
        property string pressedName

        function follow() {
            if (Math.abs(mouseX - pressedAt.x) > drag.threshold || Math.abs(mouseY - pressedAt.y) > drag.threshold)
                resting = false;
        }

        onPressed: {
            pressedAt = Qt.point(mouse.x, mouse.y);
            pressedName = root.name;
            resting = true;
        }
        onPositionChanged: follow()
        onTouched: {
            follow();
            if (resting)
                root.chosen(pressedName);
        }
    }
}
