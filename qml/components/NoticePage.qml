// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Roon 1.0
import Velunor.Screen 1.0
import "."

/** A page that tells the user what is the matter, and where the appliance is configured. */
Rectangle {
    id: root

    /** One line of plain text. */
    property string title
    /** The lines below the title, each a text for a NoticeLine; an empty one leaves its place free. */
    property var lines: []
    /** Lower edge of the lines, where a page may add something of its own. */
    readonly property real linesBottom: lineColumn.y + lineColumn.height
    /** Whether the boxes show their outlines, for work on the layout. */
    property bool gl_show_debug_lines: false

    width: ScreenController.width
    height: ScreenController.height
    color: Theme.background

    LayoutBox {
        id: header

        objectName: "header"
        x: 0.05 * root.width
        y: 0.05 * root.height
        width: 0.6 * root.width
        height: 0.15 * root.height
        outlined: root.gl_show_debug_lines

        CellIcon {
            id: noticeIcon

            objectName: "noticeIcon"
            anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
            width: 0.15 * header.width
            outlined: root.gl_show_debug_lines
            source: "../../icons/round_error_outline_white_48dp.png"
        }

        FittedText {
            objectName: "title"
            anchors { left: noticeIcon.right; leftMargin: 0.02 * header.width; right: parent.right; top: parent.top; bottom: parent.bottom }
            font.pixelSize: header.width / 16
            text: root.title
        }
    }

    Column {
        id: lineColumn

        anchors { left: header.left; top: header.bottom }

        Repeater {
            model: root.lines

            NoticeLine {
                objectName: "line" + index
                width: 0.9 * root.width
                height: 0.1 * root.height
                outlined: root.gl_show_debug_lines
                text: modelData
            }
        }
    }

    BrowseHint {
        objectName: "browseHint"
        anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 0.15 * root.height }
        width: 0.9 * root.width
        height: 0.08 * root.height
        outlined: root.gl_show_debug_lines
        hostName: Roon.localHostName
        address: Roon.ipAddress
    }
}
