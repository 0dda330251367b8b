// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/** Time played, name of the zone, length of the track. */
Item {
    id: root

    /** Time played, ready to be shown. */
    property string seekPositionText
    /** Length of the track, ready to be shown. */
    property string lengthText
    /** Display name of the zone; what does not fit is cut. */
    property string zone
    // Whether the two times are shown; the name always is.
    property bool seekPositionVisible: false
    property bool lengthVisible: false
    // Pixel sizes of the two times and of the name.
    property real timeSize
    property real zoneSize
    /** Whether the boxes show their outlines, for work on the layout. */
    property bool outlined: false

    /** A tap on the name of the zone. */
    signal zoneTouched()

    LayoutBox {
        anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
        width: 0.3 * root.width
        outlined: root.outlined

        PageText {
            objectName: "seekPosition"
            anchors.fill: parent
            visible: root.seekPositionVisible
            color: Theme.secondaryText
            font.pixelSize: root.timeSize
            horizontalAlignment: Text.AlignLeft
            text: root.seekPositionText
        }
    }

    LayoutBox {
        objectName: "zoneName"
        anchors { horizontalCenter: parent.horizontalCenter; top: parent.top; bottom: parent.bottom }
        width: 0.6 * root.width
        outlined: root.outlined

        PageText {
            objectName: "zoneNameText"
            anchors.fill: parent
            elide: Text.ElideRight
            maximumLineCount: 1
            font.pixelSize: root.zoneSize
            horizontalAlignment: Text.AlignHCenter
            text: Format.beginning(root.zone)
        }

        TouchArea {
            margin: Theme.touchMargin
            onTouched: root.zoneTouched()
        }
    }

    LayoutBox {
        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: 0.3 * root.width
        outlined: root.outlined

        PageText {
            objectName: "length"
            anchors.fill: parent
            visible: root.lengthVisible
            color: Theme.secondaryText
            font.pixelSize: root.timeSize
            horizontalAlignment: Text.AlignRight
            text: root.lengthText
        }
    }
}
