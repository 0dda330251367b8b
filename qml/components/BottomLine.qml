// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/** Time played, name of the zone, length of the track. */
Item {
    id: root

    property string seekPositionText
    property string lengthText
    property string zone
    property bool seekPositionVisible: false
    property bool lengthVisible: false
    property real timeSize
    property real zoneSize
    property bool outlined: false

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
