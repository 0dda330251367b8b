// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0

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
            dialog = create("components/ZoneDialog.qml", top, { screenWidth: 800, screenHeight: 480, zones: ["Bath", "Hall", "Kitchen"] });
            list = find(dialog, "zoneList");
            closeTimer = find(dialog, "closeTimer");
            selected.target = dialog;
            selected.clear();
            dialog.open();
            tryCompare(dialog, "opened", true);
        }

        function names(count, word) {
            const found = [];
            for (let i = 0; i < count; ++i)
                found.push((word || "Zone ") + i);
            return found;
        }

        /** The rows on view, as "name@y" from the top of the list; what is outside of it is not seen. */
        function onView() {
            const seen = [];
            const rows = list.contentItem.children;
            for (let i = 0; i < rows.length; ++i) {
                if (!rows[i].visible || rows[i].name === undefined)
                    continue;
                const y = rows[i].mapToItem(list, 0, 0).y;
                if (y > -list.rowHeight && y < list.height)
                    seen.push({ name: rows[i].children[0].text, y: y });
            }
            return seen.sort(function(one, other) { return one.y - other.y; })
                       .map(function(row) { return row.name + "@" + Math.round(row.y); }).join(" ");
        }

        /** What is to be seen when the list stands at this row. */
        function rowsFrom(first, count) {
            const rows = [];
            for (let i = 0; i < Math.min(6, count - first); ++i)
                rows.push(dialog.zones[first + i] + "@" + Math.round(i * list.rowHeight));
            return rows.join(" ");
        }

        function scrollTo(row) {
            list.positionViewAtIndex(row, GridView.Beginning);
            compare(onView(), rowsFrom(row, dialog.zones.length));
        }

        function test_panelFillsTheScreenButForAMargin() {
            const panel = find(dialog, "panel");
            compare(panel.width, 700);
            compare(panel.height, 380);
            const corner = panel.mapToItem(null, 0, 0);
            compare(corner.x, 50);
            compare(corner.y, 50);
            compare(dialog.radius, 8);
            const frame = find(dialog, "panel").children[0];
            const picture = Pixels.grab(frame.parent);
            for (const x of [0, 4, 695, 699])
                compareColour(Pixels.at(picture, x, 190), "#5A9BE3", x);
            // Nine tenths of the colour, through which the page is seen.
            compareColour(Pixels.at(picture, 5, 190), "#a8a0a0");
            fuzzyCompare(Pixels.at(picture, 5, 190).a, 0.9, 0.01);
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

        function test_anEndlessNameIsLaidOutAsFarAsItCanBeSeen() {
            const endless = "0123456789".repeat(100000);
            dialog.zones = ["Bath", endless];
            compare(list.itemAtIndex(1).children[0].text.length, 2000);
            verify(list.itemAtIndex(1).children[0].truncated);
            // It is chosen as it is called.
            tap(list.itemAtIndex(1));
            compare(selected.count, 1);
            verify(selected.signalArguments[0][0] === endless);
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

        function test_aTapStopsTheTimerThenClosesThenSelects() {
            const steps = [];
            function note(what) {
                steps.push(what + (closeTimer.running ? ", timed" : ", untimed") + (dialog.visible ? ", open" : ", closed"));
            }
            dialog.aboutToHide.connect(function() { note("closing"); });
            dialog.closed.connect(function() { note("closed"); });
            dialog.zoneSelected.connect(function() { note("selected"); });
            verify(closeTimer.running);
            tap(list.itemAtIndex(1));
            compare(steps, ["closing, untimed, open", "closed, untimed, closed", "selected, untimed, closed"]);
        }

        function test_everyOpeningBeginsAtTheFirstRow() {
            dialog.zones = names(50);
            scrollTo(30);
            dialog.close();
            dialog.open();
            verifyAtTheTop();
            // A list that ran when it was closed does not run on.
            list.flick(0, -3000);
            tryVerify(function() { return list.contentY > 100; });
            dialog.close();
            dialog.open();
            waitForRendering(list);
            verifyAtTheTop();
        }

        function verifyAtTheTop() {
            compare(onView(), rowsFrom(0, dialog.zones.length));
            const highlight = list.highlightItem;
            compare(highlight.mapToItem(list, 0, 0, highlight.width, highlight.height),
                    Qt.rect(0, 0, list.width, list.rowHeight));
            // Between the name and the right end of its row there is nothing but the highlight.
            verify(Qt.colorEqual(Pixels.at(Pixels.grab(list), list.width - 30, 10), "lightsteelblue"));
        }

        function test_aFingerScrollsTheListWithoutSelecting() {
            dialog.zones = names(50);
            closeTimer.stop();
            drag(list, 300, 250, 300, 50);
            tryCompare(closeTimer, "running", true);
            tryCompare(list, "moving", false);
            compare(selected.count, 0);
            verify(dialog.visible);
            // The list rests on whole rows.
            const first = Math.round(list.contentY / list.rowHeight);
            verify(first > 2);
            compare(onView(), rowsFrom(first, 50));
            compare(list.height % list.rowHeight, 0);
        }

        function test_aShortListTellsNoPosition() {
            compare(markAt(), "");
            dialog.zones = names(50);
            compare(markAt(), "first");
            list.positionViewAtEnd();
            compare(markAt(), "last");
            scrollTo(0);
            compare(markAt(), "first");
        }

        /** At which end of the list the mark of its position is seen. */
        function markAt() {
            waitForRendering(list, 100);
            const picture = Pixels.grab(list.parent);
            const x = list.x + list.width - 5;
            const seen = [ { at: "first", y: list.y + 5 }, { at: "last", y: list.y + list.height - 5 } ];
            return seen.filter(function(place) { return Qt.colorEqual(Pixels.at(picture, x, place.y), "#5A9BE3"); })
                       .map(function(place) { return place.at; }).join();
        }

        function test_aChangeOfTheListKeepsItsPlace_data() {
            return [
                { tag: "the same names", from: names(200), at: 100, to: names(200) },
                { tag: "other names", from: names(200), at: 100, to: names(200, "Room ") },
                { tag: "one more", from: names(200), at: 100, to: names(201) },
                { tag: "one more in front", from: names(200), at: 100, to: ["First"].concat(names(200)) },
                { tag: "fewer, enough is left", from: names(200), at: 100, to: names(150) },
                { tag: "fewer, the end comes on view", from: names(200), at: 100, to: names(103), expected: 97 },
                { tag: "fewer, it had stood beyond", from: names(200), at: 100, to: names(50), expected: 44 },
                { tag: "as many as are on view", from: names(200), at: 100, to: names(6), expected: 0 },
                { tag: "fewer than are on view", from: names(200), at: 100, to: names(3), expected: 0 },
                { tag: "none", from: names(200), at: 100, to: [], expected: 0 },
                { tag: "many from few", from: names(3), at: 0, to: names(200) },
                { tag: "many from none", from: [], at: 0, to: names(200) },
                { tag: "the last is gone", from: names(200), at: 194, to: names(199), expected: 193 },
                { tag: "the first is gone", from: names(200), at: 0, to: names(200).slice(1) }
            ];
        }

        function test_aChangeOfTheListKeepsItsPlace(row) {
            const expected = row.expected === undefined ? row.at : row.expected;
            dialog.zones = row.from;
            if (row.at > 0)
                scrollTo(row.at);
            dialog.zones = row.to;
            waitForRendering(list, 100);
            compare(onView(), rowsFrom(expected, row.to.length));
            compare(find(dialog, "zoneListHeader").text, "Available Zones (" + row.to.length + ")");
            // It still has both its ends.
            if (row.to.length > 6) {
                list.positionViewAtEnd();
                compare(onView(), rowsFrom(row.to.length - 6, row.to.length));
                list.positionViewAtBeginning();
                compare(onView(), rowsFrom(0, row.to.length));
            }
        }

        function test_aChangeWhileItIsClosedShowsAtTheNextOpening_data() {
            return test_aChangeOfTheListKeepsItsPlace_data();
        }

        function test_aChangeWhileItIsClosedShowsAtTheNextOpening(row) {
            dialog.zones = row.from;
            if (row.at > 0)
                scrollTo(row.at);
            dialog.close();
            dialog.zones = row.to;
            dialog.open();
            tryCompare(dialog, "opened", true);
            if (row.to.length > 0)
                verifyAtTheTop();
            else
                compare(onView(), "");
        }

        function test_anEmptiedListComesBackWithItsHighlight() {
            dialog.zones = [];
            waitForRendering(list, 100);
            compare(onView(), "");
            dialog.zones = names(20);
            waitForRendering(list, 100);
            verifyAtTheTop();
        }

        function test_aChangeUnderTheFingerDoesNotMoveTheList_data() {
            return [ { tag: "more", to: names(201) }, { tag: "fewer", to: names(150) }, { tag: "others", to: names(200, "Room ") } ];
        }

        function test_aChangeUnderTheFingerDoesNotMoveTheList(row) {
            const touch = dragFromTheMiddle();
            verify(list.dragging);
            const place = list.itemAtIndex(103).mapToItem(list, 0, 0).y;
            dialog.zones = row.to;
            waitForRendering(list, 100);
            compare(list.itemAtIndex(103).mapToItem(list, 0, 0).y, place);
            compare(list.itemAtIndex(103).children[0].text, row.to[103]);
            // The list goes on following the finger.
            moveBy(touch, 150, 110);
            compare(list.itemAtIndex(103).mapToItem(list, 0, 0).y, place - 40);
            touch.release(1, list, 300, 110).commit();
            tryCompare(list, "moving", false);
            const first = Math.round(list.contentY / list.rowHeight);
            verify(first > 100);
            compare(onView(), rowsFrom(first, row.to.length));
            compare(selected.count, 0);
        }

        /** A finger that has pulled a long list up from its hundredth row, and holds it. */
        function dragFromTheMiddle() {
            dialog.zones = names(200);
            scrollTo(100);
            const touch = touchEvent(list);
            touch.press(1, list, 300, 250).commit();
            moveBy(touch, 250, 150);
            return touch;
        }

        function moveBy(touch, from, to) {
            for (let y = from; y >= to; y -= 5)
                touch.move(1, list, 300, y).commit();
            // Movements arrive with the next frame.
            waitForRendering(list, 100);
        }

        function test_aListThatEndsAboveTheFingerStandsAtItsEnd_data() {
            return [ { tag: "many left", count: 50 }, { tag: "few left", count: 4 }, { tag: "none left", count: 0 } ];
        }

        function test_aListThatEndsAboveTheFingerStandsAtItsEnd(row) {
            const touch = dragFromTheMiddle();
            dialog.zones = names(row.count);
            const expected = rowsFrom(Math.max(0, row.count - 6), row.count);
            waitForRendering(list, 100);
            compare(onView(), expected);
            moveBy(touch, 150, 110);
            compare(onView(), expected);
            touch.release(1, list, 300, 110).commit();
            waitForRendering(list, 100);
            compare(onView(), expected);
            compare(selected.count, 0);
            // The next finger finds everything as usual.
            if (row.count > 0) {
                tap(list, 300, 20);
                compare(selected.signalArguments[0][0], "Zone " + Math.max(0, row.count - 6));
            }
        }

        function test_aChangeWhileTheListRunsDoesNotStopIt() {
            dialog.zones = names(200);
            scrollTo(20);
            list.flick(0, -2000);
            tryVerify(function() { return list.itemAtIndex(24).mapToItem(list, 0, 0).y < 100; });
            const before = list.itemAtIndex(24).mapToItem(list, 0, 0).y;
            dialog.zones = names(220, "Room ");
            verify(list.flicking);
            verify(list.itemAtIndex(24).mapToItem(list, 0, 0).y <= before);
            verify(list.itemAtIndex(24).mapToItem(list, 0, 0).y > before - 50);
            tryCompare(list, "moving", false);
            const first = Math.round(list.contentY / list.rowHeight);
            verify(first > 24);
            compare(onView(), rowsFrom(first, 220));
        }

        function test_aRunningListThatEndsBeforeStandsAtItsEnd() {
            dialog.zones = names(200);
            scrollTo(100);
            list.flick(0, -2000);
            tryVerify(function() { return list.itemAtIndex(104).mapToItem(list, 0, 0).y < 100; });
            dialog.zones = names(50);
            waitForRendering(list, 100);
            compare(onView(), rowsFrom(44, 50));
        }

        function test_onlyATapSelects_data() {
            return [
                { tag: "still", dx: 0, dy: 0, selects: true },
                { tag: "a tremble", dx: 4, dy: -3, selects: true },
                { tag: "sideways", dx: 60, dy: 0, selects: false },
                { tag: "sideways to the left", dx: -60, dy: 0, selects: false },
                { tag: "along the row", dx: 250, dy: 2, selects: false },
                { tag: "askew", dx: 20, dy: 8, selects: false },
                { tag: "down within the row", dx: 0, dy: 20, selects: false },
                { tag: "up within the row", dx: 0, dy: -20, selects: false }
            ];
        }

        function test_onlyATapSelects(row) {
            for (const zones of [["Bath", "Hall", "Kitchen"], names(50)]) {
                selected.clear();
                dialog.zones = zones;
                dialog.open();
                tryCompare(dialog, "opened", true);
                const name = list.itemAtIndex(1);
                drag(name, 300, 24, 300 + row.dx, 24 + row.dy);
                compare(selected.count, row.selects ? 1 : 0);
                compare(dialog.visible, !row.selects);
            }
        }

        function test_aFingerThatComesBackSelectsNothing() {
            const name = list.itemAtIndex(1);
            const touch = drag(name, 300, 24, 360, 24, false);
            for (let x = 360; x >= 300; x -= 5)
                touch.move(1, name, x, 24).commit();
            touch.release(1, name, 300, 24).commit();
            compare(selected.count, 0);
            // And nothing of it is left for the next one.
            tap(name);
            compare(selected.count, 1);
        }

        // Nothing tells the list to take such a finger: it does not move before it lifts.
        function test_aFingerThatJumpsSelectsNothing_data() {
            return [ { tag: "sideways", dx: 100, dy: 0 }, { tag: "down within the row", dx: 0, dy: 15 },
                     { tag: "up within the row", dx: 0, dy: -15 } ];
        }

        function test_aFingerThatJumpsSelectsNothing(row) {
            const name = list.itemAtIndex(1);
            const touch = touchEvent(name);
            touch.press(1, name, 300, 24).commit();
            touch.release(1, name, 300 + row.dx, 24 + row.dy).commit();
            compare(selected.count, 0);
            verify(dialog.visible);
        }

        function test_aTouchThatStopsTheListSelectsNothing() {
            dialog.zones = names(200);
            list.flick(0, -3000);
            tryVerify(function() { return list.contentY > 200; });
            tap(list, 300, 100);
            compare(selected.count, 0);
            verify(dialog.visible);
        }

        function test_aTapMeansTheNameThatWasPressed_data() {
            const few = ["Bath", "Hall", "Kitchen"];
            const many = names(50);
            return [
                { tag: "moved down", from: few, to: ["Attic"].concat(few), selected: "Hall" },
                { tag: "moved up", from: few, to: ["Hall", "Kitchen"], selected: "Hall" },
                { tag: "gone", from: few, to: ["Bath", "Kitchen"], selected: "" },
                { tag: "renamed", from: few, to: ["Bath", "Lounge", "Kitchen"], selected: "" },
                { tag: "gone with its row", from: few, to: ["Bath"], selected: "" },
                { tag: "all gone", from: few, to: [], selected: "" },
                { tag: "gone and back", from: few, to: [], then: few, selected: "" },
                { tag: "others changed", from: few, to: ["Attic", "Hall"], selected: "Hall" },
                { tag: "in a long list", from: many, to: ["First"].concat(many), selected: "Zone 1" },
                { tag: "the same again", from: few, to: few.slice(), selected: "Hall" }
            ];
        }

        function test_aTapMeansTheNameThatWasPressed(row) {
            dialog.zones = row.from;
            waitForRendering(list, 100);
            const touch = touchEvent(list);
            const y = 1.5 * list.rowHeight;
            touch.press(1, list, 300, y).commit();
            dialog.zones = row.to;
            waitForRendering(list, 100);
            if (row.then)
                dialog.zones = row.then;
            waitForRendering(list, 100);
            touch.release(1, list, 300, y).commit();
            compare(selected.count > 0 ? selected.signalArguments[0][0] : "", row.selected);
            compare(dialog.visible, row.selected === "");
        }

        function test_aRowThatMovesAwayUnderTheFingerIsNotSelected() {
            dialog.zones = names(50);
            scrollTo(44);
            const touch = touchEvent(list);
            touch.press(1, list, 300, 10).commit();
            // The last name goes, and all others move down by one row.
            dialog.zones = names(49);
            waitForRendering(list, 100);
            compare(onView(), rowsFrom(43, 49));
            touch.release(1, list, 300, 10).commit();
            verify(selected.count === 0 || selected.signalArguments[0][0] === "Zone 44");
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
