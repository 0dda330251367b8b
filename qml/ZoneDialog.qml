// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** The zone chooser: a list of display names, of which a tap selects one. */
PanelPopup {
    id: root

    property var zones: []
    /** Size of the screen that the panel leaves a margin on. */
    property real screenWidth
    property real screenHeight

    signal zoneSelected(string name)

    objectName: "zoneDialog"
    panelWidth: screenWidth - 100
    panelHeight: screenHeight - 100
    radius: 8
    border.width: 5
    border.color: Theme.accent
    onAboutToShow: {
        zoneList.currentIndex = 0;
        zoneList.positionViewAtBeginning();
    }

    Rectangle {
        id: header

        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 10 }
        height: headerText.height + 8
        radius: 5
        color: Theme.listHeader

        PageText {
            id: headerText

            objectName: "zoneListHeader"
            anchors.centerIn: parent
            color: Theme.popupText
            font.italic: true
            font.pixelSize: root.panelHeight / 14
            text: qsTr("Available Zones (%1)").arg(zoneList.count)
        }
    }

    ListView {
        id: zoneList

        readonly property real rowHeight: root.panelHeight / 8

        objectName: "zoneList"
        anchors {
            left: header.left
            right: header.right
            top: header.bottom
            topMargin: 4
        }
        // Whole rows, so that none is cut while the list rests.
        height: Math.floor((parent.height - y - 10) / rowHeight) * rowHeight
        snapMode: ListView.SnapToItem
        clip: true
        model: root.zones
        highlightMoveDuration: 0
        onMovementStarted: root.restartCloseTimer()

        highlight: Rectangle {
            radius: 5
            color: Theme.listHighlight
        }

        delegate: Item {
            width: zoneList.width
            height: zoneList.rowHeight

            PageText {
                anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
                color: Theme.popupText
                elide: Text.ElideRight
                font.pixelSize: root.panelHeight / 12
                text: modelData
            }

            TouchArea {
                onTouched: {
                    const name = modelData;
                    console.debug(name);
                    root.stopCloseTimer();
                    root.close();
                    root.zoneSelected(name);
                }
            }
        }
    }

    // Tells that there is more, and where.
    Rectangle {
        objectName: "scrollPosition"
        anchors { right: zoneList.right; rightMargin: 2 }
        y: zoneList.y + zoneList.visibleArea.yPosition * zoneList.height
        width: 6
        height: zoneList.visibleArea.heightRatio * zoneList.height
        radius: width / 2
        visible: zoneList.visibleArea.heightRatio < 1
        color: Theme.accent
    }
}
