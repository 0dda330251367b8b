// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** A text in a frame that answers taps. */
Rectangle {
    id: root

    /** One line; it becomes smaller where it does not fit. */
    property alias text: label.text
    /** Size of a text that fits. */
    property alias pixelSize: label.font.pixelSize
    /** Pixels by which the touch area reaches beyond the frame. */
    property alias touchMargin: touchArea.margin

    /** A tap. */
    signal touched()

    color: touchArea.pressed ? Theme.buttonPressed : Theme.invisible
    radius: 10
    border.width: 2
    border.color: Theme.buttonFrame

    FittedText {
        id: label

        objectName: "text"
        anchors { fill: parent; leftMargin: root.radius; rightMargin: root.radius }
        horizontalAlignment: Text.AlignHCenter
    }

    TouchArea {
        id: touchArea

        onTouched: root.touched()
    }
}
