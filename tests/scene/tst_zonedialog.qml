// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15

Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "ZoneDialog"

        property var dialog: null
        property var list: null
        property var closeTimer: null

        function prepare() {
            dialog = create("ZoneDialog.qml", top, { screenWidth: 800, screenHeight: 480, zones: ["Bath", "Hall", "Kitchen"] });
            list = find(dialog, "zoneList");
            closeTimer = find(dialog, "closeTimer");
            selected.target = dialog;
            selected.clear();
            dialog.open();
            tryCompare(dialog, "opened", true);
        }

        function many() {
            const names = [];
            for (let i = 0; i < 50; ++i)
                names.push("Zone " + i);
            return names;
        }

        function test_panelFillsTheScreenButForAMargin() {
            const panel = find(dialog, "panel");
            compare(panel.width, 700);
            compare(panel.height, 380);
            const corner = panel.mapToItem(null, 0, 0);
            compare(corner.x, 50);
            compare(corner.y, 50);
            compare(dialog.radius, 8);
            compare(dialog.border.width, 5);
            verify(Qt.colorEqual(dialog.border.color, "#5A9BE3"));
            verify(dialog.modal);
        }

        function test_headerCounts() {
            const header = find(dialog, "zoneListHeader");
            compare(header.text, "Available Zones (3)");
            compare(header.font.italic, true);
            compare(header.font.pixelSize, Math.round(380 / 14));
            compare(header.parent.height, header.height + 8);
            dialog.zones = [];
            compare(header.text, "Available Zones (0)");
        }

        function test_rows() {
            const row = list.itemAtIndex(2);
            compare(row.height, 380 / 8);
            compare(row.children[0].text, "Kitchen");
            compare(row.children[0].textFormat, Text.PlainText);
            compare(row.children[0].font.pixelSize, Math.round(380 / 12));
            dialog.zones = ["A zone with a name that nobody could ever read in one line on a panel as small as this one"];
            verify(list.itemAtIndex(0).children[0].truncated);
        }

        function test_markupInANameIsShownAsItIs() {
            dialog.zones = ["<b>Bath</b> &amp; Hall"];
            compare(list.itemAtIndex(0).children[0].text, "<b>Bath</b> &amp; Hall");
            compare(list.itemAtIndex(0).children[0].textFormat, Text.PlainText);
            tap(list.itemAtIndex(0));
            compare(selected.signalArguments[0][0], "<b>Bath</b> &amp; Hall");
        }

        function test_aTapSelectsAndCloses() {
            tap(list.itemAtIndex(1));
            verify(logged("debug: Hall"));
            compare(selected.count, 1);
            compare(selected.signalArguments[0][0], "Hall");
            verify(!dialog.visible);
            verify(!closeTimer.running);
        }

        function test_everyOpeningBeginsAtTheFirstRow() {
            dialog.zones = many();
            list.currentIndex = 30;
            list.positionViewAtEnd();
            dialog.close();
            dialog.open();
            compare(list.currentIndex, 0);
            compare(list.contentY, list.originY);
            verify(Qt.colorEqual(list.highlightItem.color, "lightsteelblue"));
        }

        function test_aFingerScrollsTheListWithoutSelecting() {
            dialog.zones = many();
            closeTimer.stop();
            drag(list, 300, 250, 300, 50);
            tryVerify(function() { return list.contentY > 100; });
            verify(closeTimer.running);
            tryCompare(list, "moving", false);
            compare(selected.count, 0);
            verify(dialog.visible);
            // The list rests on whole rows.
            fuzzyCompare(list.contentY % list.rowHeight, 0, 0.5);
            compare(list.height % list.rowHeight, 0);
        }

        function test_aShortListTellsNoPosition() {
            verify(!find(dialog, "scrollPosition").visible);
            dialog.zones = many();
            verify(find(dialog, "scrollPosition").visible);
        }

        function test_theSameNamesDoNotMoveTheList() {
            dialog.zones = many();
            list.positionViewAtIndex(20, ListView.Beginning);
            const place = list.contentY;
            dialog.zones = many();
            compare(list.contentY, place);
        }

        function test_theTimersEndClosesWithoutAChoice() {
            compare(closeTimer.interval, 5000);
            verify(!closeTimer.repeat);
            verify(closeTimer.running);
            closeTimer.interval = 50;
            tryCompare(dialog, "visible", false);
            compare(selected.count, 0);
        }

        function test_aTouchBesideItClosesWithoutAChoice() {
            tap(top, 10, 10);
            tryCompare(dialog, "visible", false);
            compare(selected.count, 0);
        }

        function test_noZones() {
            dialog.zones = [];
            compare(list.count, 0);
            dialog.close();
            dialog.open();
            verify(dialog.visible);
        }

        SignalSpy {
            id: selected

            signalName: "zoneSelected"
        }
    }
}
