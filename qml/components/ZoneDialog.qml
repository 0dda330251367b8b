// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** The zone chooser: a list of display names, of which a tap selects one. */
PanelPopup {
    id: root

    /** The display names to choose from, in the order in which they are shown. It may change while the list is open. */
    property var zones: []

    // Size in pixels of the screen, on which the panel leaves a margin.
    property real screenWidth
    property real screenHeight

    /** A tap on this name, which is still among the zones; the dialog is closed. */
    signal zoneSelected(string name)

    // The rest is for the dialog itself.

    /** Gives each zone its row. Rows come and go at the end only, so that the list keeps its place. */
    function showZones() {
        if (zones.length < rows.count)
            zoneList.leaveRowsFrom(zones.length);
        for (let i = 0; i < zones.length; ++i)
            rows.set(i, { name: zones[i] });
        zoneList.currentIndex = 0;
    }

    /** Answers a tap on a name. */
    function select(name) {
        // It may have gone since it was pressed.
        if (zones.indexOf(name) < 0)
            return;
        console.debug(name);
        stopCloseTimer();
        close();
        zoneSelected(name);
    }

    objectName: "zoneDialog"
    panelWidth: screenWidth - 100
    panelHeight: screenHeight - 100
    radius: 8
    border.width: 5
    border.color: Theme.accent
    onZonesChanged: showZones()
    onAboutToShow: zoneList.positionViewAtBeginning()

    // A list over the names themselves would return to the top whenever they change, and forget the finger.
    ListModel {
        id: rows
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

    // A grid of one column: it knows the places of all rows, while a list estimates them from the rows it has made.
    GridView {
        id: zoneList

        readonly property real rowHeight: root.panelHeight / 8

        /**
         * Removes the rows from this one on. A list that is left without any row on view would take its place for the
         * beginning, so it goes to its new end first.
         */
        function leaveRowsFrom(first) {
            if (contentY > Math.max(0, first * rowHeight - height)) {
                // A finger that is still on it would pull it away from there: disabled, the list lets go of the finger.
                enabled = false;
                enabled = true;
                positionViewAtIndex(first - 1, GridView.End);
            }
            rows.remove(first, rows.count - first);
        }

        objectName: "zoneList"
        anchors {
            left: header.left
            right: header.right
            top: header.bottom
            topMargin: 4
        }
        // Whole rows, so that none is cut while the list rests.
        height: Math.floor((parent.height - y - 10) / rowHeight) * rowHeight
        snapMode: GridView.SnapToRow
        // Rows that are made in advance, a bit at a time, could be gone before they are finished.
        cacheBuffer: 0
        clip: true
        cellWidth: width
        cellHeight: rowHeight
        model: rows
        highlightMoveDuration: 0
        onMovementStarted: root.restartCloseTimer()

        highlight: Rectangle {
            radius: 5
            color: Theme.listHighlight
        }

        delegate: ZoneRow {
            width: zoneList.width
            height: zoneList.rowHeight
            pixelSize: root.panelHeight / 12
            name: model.name
            onChosen: root.select(name)
        }
    }

    // Shows that there is more, and where.
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
