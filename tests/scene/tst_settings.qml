// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Roon 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0

Item {
    id: top

    width: 1280
    height: 800

    SceneTestCase {
        name: "Settings"

        property var page: null
        property var timer: null
        /** What the page asked of display and navigation, in order. */
        property var calls: []

        function prepare() {
            calls = [];
            ScreenController.calls = calls;
            Navigation.calls = calls;
            ScreenController.width = 800;
            ScreenController.height = 480;
            open(150, 100, 13, 254);
        }

        function cleanupTestCase() {
            ScreenController.width = 800;
            ScreenController.height = 480;
            ScreenController.minBrightness = 13;
            ScreenController.maxBrightness = 254;
            Settings.brightness = 150;
            Settings.clockBrightness = 150;
        }

        function open(brightness, clockBrightness, minimum, maximum) {
            ScreenController.minBrightness = minimum;
            ScreenController.maxBrightness = maximum;
            Settings.brightness = brightness;
            Settings.clockBrightness = clockBrightness;
            if (page)
                page.destroy();
            page = create("SettingsWindow.qml", top);
            timer = find(page, "inactivityTimer");
            restarts.target = timer;
            restarts.clear();
        }

        function slider(row) {
            return find(find(page, row), "slider");
        }

        /** Drags the handle to this part of the slider's way. */
        function dragTo(row, part) {
            const moved = slider(row);
            const way = moved.availableWidth - moved.handle.width;
            const middle = moved.handle.width / 2;
            drag(moved, middle + moved.position * way, moved.height / 2, middle + part * way, moved.height / 2);
        }

        function test_placesAndTexts() {
            compare(page.objectName, "SettingsWindow");
            verify(Qt.colorEqual(page.color, "#000000"));
            const title = find(page, "title");
            compare(title.text, "Velunor Settings");
            compare(title.font.pixelSize, 28);
            compare(title.x, 20);
            compare(title.y, 20);
            const address = find(page, "address");
            compare(address.text, "(" + Roon.ipAddress + ")");
            compare(address.font.pixelSize, 20);
            compare(address.x, title.x + title.width + 10);
            fuzzyCompare(address.y + address.height / 2, title.y + title.height / 2, 1);

            const first = find(page, "screenBrightness");
            compare(first.text, "Screen brightness");
            compare(first.font.pixelSize, 16);
            compare(first.x, 40);
            compare(first.y, 131);
            const second = find(page, "clockBrightness");
            compare(second.text, "Clock brightness");
            compare(second.x, 40);
            compare(second.y, first.y + first.height + 25);
            for (const label of [first, second]) {
                const beside = find(label, "slider");
                const place = beside.mapToItem(page, 0, beside.height / 2);
                compare(place.x, 261);
                fuzzyCompare(place.y, label.y + label.height / 2, 1);
                compare(beside.width, 317);
                compare(beside.height, 40);
            }

            const hint = find(page, "webHint");
            compare(hint.text, "For other screen settings please visit Velunor's webpage");
            compare(hint.font.pixelSize, 20);
            verify(hint.font.italic);
            fuzzyCompare(hint.x + hint.width / 2, 400, 1);
            fuzzyCompare(hint.y + hint.height / 2, 240, 1);
        }

        function test_saveStandsInTheCorner_data() {
            return [ { tag: "800x480", width: 800, height: 480 }, { tag: "1280x800", width: 1280, height: 800 } ];
        }

        function test_saveStandsInTheCorner(row) {
            ScreenController.width = row.width;
            ScreenController.height = row.height;
            const save = find(page, "save");
            compare(save.text, "Save");
            compare(save.pixelSize, 20);
            compare(save.x + save.width, row.width - 30);
            compare(save.y + save.height, row.height - 30);
        }

        /** Which part of its way the handle on view has gone. */
        function handleSeenAt(row) {
            const moved = slider(row);
            const area = moved.mapToItem(page, 0, 0, moved.width, moved.height);
            const line = Pixels.part(Pixels.grab(page), area);
            const y = Math.floor(moved.height / 2);
            const seen = [];
            for (let x = 0; x < moved.width; ++x) {
                if (Qt.colorEqual(Pixels.at(line, x, y), "white"))
                    seen.push(x);
            }
            verify(seen.length > 20, row + " has no handle");
            const middle = (seen[0] + seen[seen.length - 1] + 1) / 2;
            return (middle - moved.handle.width / 2) / (moved.width - moved.handle.width);
        }

        function compareHandle(row, part) {
            fuzzyCompare(handleSeenAt(row), part, 0.004, row); // one pixel
        }

        function test_slidersBeginWithTheSettings() {
            compareHandle("screenBrightness", (150 - 13) / (254 - 13));
            compareHandle("clockBrightness", (100 - 13) / (254 - 13));
            compare(restarts.count, 0);
        }

        function test_valuesOutsideTheBandStay_data() {
            return [ { tag: "0", stored: 0, part: 0 }, { tag: "254", stored: 254, part: 1 }, { tag: "31", stored: 31, part: 1 },
                     { tag: "1", stored: 1, part: 0 }, { tag: "25, within it", stored: 25, part: 0.8 } ];
        }

        function test_valuesOutsideTheBandStay(row) {
            open(row.stored, row.stored, 1, 31);
            for (const name of ["screenBrightness", "clockBrightness"])
                compareHandle(name, row.part);
            compare(Settings.brightness, row.stored);
            compare(Settings.clockBrightness, row.stored);
            dragTo("screenBrightness", 0.5);
            compare(Settings.brightness, 16);
            compare(Settings.clockBrightness, row.stored);
        }

        function test_aMoveCountsAtOnce_data() {
            return [ { tag: "screen", row: "screenBrightness", key: "brightness" },
                     { tag: "clock", row: "clockBrightness", key: "clockBrightness" } ];
        }

        function test_aMoveCountsAtOnce(row) {
            const other = row.key === "brightness" ? "clockBrightness" : "brightness";
            const before = Settings[other];
            const moved = slider(row.row);
            const touch = drag(moved, 0.5 * moved.width, 20, 0.9 * moved.width, 20, false);
            // Moves are gathered until the next frame.
            tryVerify(function() { return Settings[row.key] > 220; });
            compare(Settings[row.key], moved.value);
            compare(Math.round(moved.value), moved.value);
            verify(restarts.count > 0);
            verify(timer.running);
            touch.release(1, moved, 0.9 * moved.width, 20).commit();
            compare(Settings[other], before);
            compare(calls, []);
        }

        function test_bothEndsCanBeReached() {
            dragTo("screenBrightness", 0);
            compare(Settings.brightness, 13);
            dragTo("screenBrightness", 1);
            compare(Settings.brightness, 254);
        }

        function test_onlyAnotherValueCounts_data() {
            return [ { tag: "screen", row: "screenBrightness", key: "brightness" },
                     { tag: "clock", row: "clockBrightness", key: "clockBrightness" } ];
        }

        function test_onlyAnotherValueCounts(row) {
            // Steps wide enough for a finger to be taken as moving within one.
            open(3, 3, 1, 6);
            const moved = slider(row.row);
            const step = (moved.width - moved.handle.width) / 5;
            const handle = moved.handle.mapToItem(moved, moved.handle.width / 2, moved.handle.height / 2);
            settingWrites.clear();
            for (let i = 0; i < 3; ++i) {
                const touch = drag(moved, handle.x, handle.y, handle.x + 0.4 * step, handle.y, false);
                waitForMoves();
                touch.move(1, moved, handle.x - 0.4 * step, handle.y).commit();
                waitForMoves();
                touch.release(1, moved, handle.x + 0.3 * step, handle.y).commit();
            }
            compare(Settings[row.key], 3);
            compare(settingWrites.count, 0);
            compare(restarts.count, 0);
            compare(moved.handle.mapToItem(moved, moved.handle.width / 2, 0).x, handle.x);

            const touch = drag(moved, handle.x, handle.y, handle.x + 0.8 * step, handle.y, false);
            tryCompare(Settings, row.key, 4);
            compare(settingWrites.count, 1);
            compare(restarts.count, 2); // stopped and started
            touch.release(1, moved, handle.x + 0.8 * step, handle.y).commit();
            compare(settingWrites.count, 1);
            compare(restarts.count, 2);
        }

        /** Moves are gathered until the next frame. */
        function waitForMoves() {
            wait(0);
            waitForRendering(page);
        }

        function test_aValueFromElsewhereIsShown() {
            Settings.brightness = 77;
            compareHandle("screenBrightness", (77 - 13) / (254 - 13));
            compare(Settings.brightness, 77);
            compare(restarts.count, 0);
        }

        function test_aDragEndsWithThePage() {
            const mainWindow = create("main.qml", null);
            Navigation.setScreen("SettingsWindow");
            const loader = find(mainWindow, "loaderSettingsWindow");
            tryCompare(loader, "status", Loader.Ready);
            const moved = find(find(loader.item, "screenBrightness"), "slider");
            const touch = drag(moved, 0.5 * moved.width, 20, 0.9 * moved.width, 20, false);
            tryVerify(function() { return Settings.brightness > 220; });
            Navigation.setScreen("Clock");
            tryCompare(loader, "item", null);
            Settings.brightness = 150;
            touch.move(1, mainWindow.contentItem, 20, 20).commit();
            touch.release(1, mainWindow.contentItem, 20, 20).commit();
            tryCompare(find(mainWindow, "loaderClock"), "status", Loader.Ready);
            compare(Settings.brightness, 150);
            verify(logged("debug: settingsWindow:onVisibleChanged: false"));
            compare(ScreenController.calls.indexOf("restoreSettings"), -1);
        }

        function test_saveKeepsAndLeaves() {
            dragTo("screenBrightness", 1);
            tap(find(page, "save"));
            verify(logged("debug: SettingsWindow: SAVE"));
            compare(calls, ["saveSettings", "clickedLeaveSettings"]);
        }

        function test_theTitleDiscardsAndLeaves() {
            dragTo("screenBrightness", 1);
            tap(find(page, "title"));
            compare(calls, ["restoreSettings", "clickedLeaveSettings"]);
        }

        function test_inactivityDiscardsAndLeaves() {
            compare(timer.interval, 30000);
            verify(!timer.repeat);
            verify(timer.running);
            timer.interval = 20;
            tryVerify(function() { return logged("debug: SettingsWindow: time out"); });
            compare(calls, ["restoreSettings", "clickedLeaveSettings"]);
            verify(!timer.running);
        }

        function test_visibilityIsLoggedAndStartsTheTimer() {
            page.visible = false;
            verify(logged("debug: settingsWindow:onVisibleChanged: false"));
            verify(!timer.running);
            page.visible = true;
            verify(logged("debug: settingsWindow:onVisibleChanged: true"));
            verify(timer.running);
        }

        function test_touchesElsewhereDoNothing() {
            tap(page, 700, 300);
            compare(calls, []);
            compare(restarts.count, 0);
        }

        SignalSpy {
            id: settingWrites

            target: Settings
            signalName: "valueChanged"
        }

        SignalSpy {
            id: restarts

            signalName: "runningChanged"
        }
    }
}
