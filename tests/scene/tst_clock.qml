// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0

/** Runs in several locales, because the names of days and months and the marker of the 12-hour clock depend on them. */
Item {
    id: top

    width: 1280
    height: 800

    SceneTestCase {
        name: "Clock"

        property var page: null

        function prepare() {
            Navigation.calls = [];
            Settings.timeFormat = true;
            Settings.clockColorRGB = "#545050";
            ScreenController.width = 800;
            ScreenController.height = 480;
            page = create("Clock.qml", top, { now: function() { return new Date(2026, 10, 5, 7, 5); } });
        }

        function cleanupTestCase() {
            ScreenController.width = 800;
            ScreenController.height = 480;
        }

        function label(name) {
            return find(find(page, name), "text");
        }

        /** What stands out where this text lies on the page: black is nothing. */
        function colour(name) {
            return colourOnView(page, label(name));
        }

        /** Whether the marker is on view, where a wide time may reach as well. */
        function markerShown() {
            label("time").opacity = 0;
            const found = colourOnView(page, find(page, "marker")).hsvValue > 0;
            label("time").opacity = 1;
            return found;
        }

        /** Shows that time from now on. */
        function setTime(hour, minute, month, day) {
            const time = new Date(2026, month === undefined ? 10 : month, day === undefined ? 5 : day, hour, minute);
            page.now = function() { return time; };
            page.showTime(page.now());
        }

        function test_hours_data() {
            return [ { tag: "07:05", hour: 7, minute: 5, in24: "7:05", in12: "7:05", afternoon: false },
                     { tag: "19:05", hour: 19, minute: 5, in24: "19:05", in12: "7:05", afternoon: true },
                     { tag: "00:00", hour: 0, minute: 0, in24: "0:00", in12: "12:00", afternoon: false },
                     { tag: "00:59", hour: 0, minute: 59, in24: "0:59", in12: "12:59", afternoon: false },
                     { tag: "10:10", hour: 10, minute: 10, in24: "10:10", in12: "10:10", afternoon: false },
                     { tag: "12:00", hour: 12, minute: 0, in24: "12:00", in12: "12:00", afternoon: true },
                     { tag: "13:30", hour: 13, minute: 30, in24: "13:30", in12: "1:30", afternoon: true },
                     { tag: "23:59", hour: 23, minute: 59, in24: "23:59", in12: "11:59", afternoon: true } ];
        }

        function test_hours(row) {
            setTime(row.hour, row.minute);
            compare(label("time").text, row.in24);
            verify(!markerShown());

            Settings.timeFormat = false;
            setTime(row.hour, row.minute);
            compare(label("time").text, row.in12);
            verify(markerShown());
            const locale = Qt.locale();
            const marker = row.afternoon ? locale.pmText : locale.amText;
            compare(label("marker").text, marker.toUpperCase());

            Settings.timeFormat = true;
            setTime(row.hour, row.minute);
            compare(label("time").text, row.in24);
            verify(!markerShown());
        }

        function test_dayAndMonthAreNamed() {
            for (let month = 0; month < 12; ++month) {
                setTime(12, 0, month, 5);
                const locale = Qt.locale();
                compare(label("month").text, locale.monthName(month, Locale.LongFormat));
                compare(label("weekday").text, locale.dayName(new Date(2026, month, 5).getDay(), Locale.LongFormat));
                compare(label("day").text, "05");
            }
            setTime(12, 0, 11, 31);
            compare(label("day").text, "31");
        }

        function test_boxesLieWhereTheyBelong_data() {
            return [ { tag: "800x480", width: 800, height: 480 }, { tag: "1280x720", width: 1280, height: 720 },
                     { tag: "1280x800", width: 1280, height: 800 } ];
        }

        function test_boxesLieWhereTheyBelong(row) {
            ScreenController.width = row.width;
            ScreenController.height = row.height;
            compare(page.width, row.width);
            compare(page.height, row.height);
            // Parts of the page: centre, centre, width, height; then the size of the text as a part of the box's width.
            const boxes = { time: [0.5, 0.45, 0.95, 0.85, 1 / 2.8],
                            marker: [0.925, 0.63, 0.1, 0.13, 0.7],
                            weekday: [0.25, 0.91, 0.2, 0.1, 0.3],
                            day: [0.5, 0.91, 0.1, 0.1, 0.9],
                            month: [0.75, 0.91, 0.2, 0.1, 0.3] };
            for (const name in boxes) {
                const box = find(page, name);
                fuzzyCompare(box.x + box.width / 2, boxes[name][0] * row.width, 1, name);
                fuzzyCompare(box.y + box.height / 2, boxes[name][1] * row.height, 1, name);
                fuzzyCompare(box.width, boxes[name][2] * row.width, 0.01, name);
                fuzzyCompare(box.height, boxes[name][3] * row.height, 0.01, name);
                compare(label(name).font.pixelSize, Math.round(boxes[name][4] * box.width), name);
                compare(label(name).font.family, "Noto Sans", name);
            }
        }

        function test_noTextIsCutOrTouchesAnother() {
            Settings.timeFormat = false;
            for (let month = 0; month < 12; ++month) {
                for (let day = 20; day < 27; ++day) {
                    setTime(22, 58, month, day);
                    const weekday = edges("weekday");
                    const number = edges("day");
                    const monthName = edges("month");
                    verify(weekday.left >= 0, label("weekday").text);
                    verify(weekday.right < number.left, label("weekday").text);
                    verify(number.right < monthName.left, label("month").text);
                    verify(monthName.right <= page.width, label("month").text);
                }
            }
            verify(edges("time").left >= 0);
            verify(edges("time").right < edges("marker").left);
            verify(edges("marker").right <= page.width);
        }

        /** Where the text of this name begins and ends. */
        function edges(name) {
            const text = label(name);
            verify(!text.truncated, name);
            const middle = text.mapToItem(page, text.width / 2, 0).x;
            verify(text.contentWidth <= text.width, name);
            return { left: middle - text.contentWidth / 2, right: middle + text.contentWidth / 2 };
        }

        function test_usualTextsHaveTheirFullSize_data() {
            return [ { tag: "24 hours", format: true, hour: 22 }, { tag: "12 hours", format: false, hour: 21 } ];
        }

        function test_usualTextsHaveTheirFullSize(row) {
            Settings.timeFormat = row.format;
            setTime(row.hour, 58, 8, 24);
            for (const name of ["time", "weekday", "day", "month"])
                compare(label(name).fontInfo.pixelSize, label(name).font.pixelSize, name);
        }

        function test_colourFollowsTheSetting() {
            Settings.timeFormat = false;
            setTime(21, 58);
            for (const wanted of ["#545050", "#5dfc0a", "#05edff"]) {
                Settings.clockColorRGB = wanted;
                for (const name of ["time", "marker", "weekday", "day", "month"])
                    compareColour(colour(name), wanted, name);
            }
        }

        function test_aColourThatIsNoneCountsAsGrey_data() {
            return [ { tag: "empty", colour: "" }, { tag: "word", colour: "no colour" }, { tag: "digits", colour: "#12" } ];
        }

        function test_aColourThatIsNoneCountsAsGrey(row) {
            Settings.clockColorRGB = row.colour;
            compareColour(colour("time"), "#545050");
        }

        function test_ticksEachSecondWhileVisible() {
            const tick = find(page, "tick");
            compare(tick.interval, 1000);
            verify(tick.repeat);
            verify(tick.triggeredOnStart);
            verify(tick.running);
            page.visible = false;
            verify(!tick.running);
            page.visible = true;
            verify(tick.running);
        }

        function test_placeholdersHoldUntilTheFirstTick() {
            const fresh = create("Clock.qml", null);
            compare(find(find(fresh, "time"), "text").text, "07:23");
            compare(find(find(fresh, "day"), "text").text, "12");
            compare(find(find(fresh, "month"), "text").text, "November");
            compare(find(find(fresh, "marker"), "text").text, "AM");
        }

        function test_nothingIsDrawnWhileTheMinuteLasts() {
            let ticks = 0;
            let time = new Date(2026, 10, 5, 7, 5);
            page.now = function() { ++ticks; return time; };
            find(page, "tick").interval = 10;
            tryVerify(function() { return ticks > 10; });
            countFrames(page);
            ticks = 0;
            tryVerify(function() { return ticks > 20; });
            compare(frames.count, 0);
            time = new Date(2026, 10, 5, 7, 6);
            tryVerify(function() { return frames.count > 0; });
        }

        function test_aTouchAnywhereBlanksTheScreen_data() {
            return [ { tag: "middle", x: 400, y: 240 }, { tag: "left top", x: 1, y: 1 },
                     { tag: "right bottom", x: 799, y: 479 } ];
        }

        function test_aTouchAnywhereBlanksTheScreen(row) {
            tap(page, row.x, row.y);
            compare(Navigation.calls, ["blankScreen"]);
            verify(logged("info: onClicked()"));
        }
    }
}
