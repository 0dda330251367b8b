// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Player 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0

Item {
    id: top

    width: 100
    height: 100

    SceneTestCase {
        id: testCase

        name: "MainWindow"

        readonly property var pages: ["Welcome", "RoonPlayerWindow2", "SettingsWindow", "RoonConnectionFailure",
                                      "ScreenSaver", "Clock", "RoonZoneNotFound", "UpdateInstalling"]
        property var mainWindow: null

        function prepare() {
            mainWindow = create("main.qml", null);
            tryCompare(loader("Welcome"), "status", Loader.Ready);
            Navigation.calls = [];
        }

        function cleanup() {
            checkComplaints();
            Player.volumeAvailable = false;
            RoonZones.zones = [];
        }

        function loader(page) {
            return find(mainWindow, "loader" + page);
        }

        function alive() {
            return pages.filter(function(page) { return loader(page).item !== null; });
        }

        function show(page) {
            Navigation.setScreen(page);
            tryCompare(loader(page), "status", Loader.Ready);
        }

        function placeOf(page) {
            return page.mapToItem(mainWindow.contentItem, 0, 0);
        }

        /** Whether the window shows this page and nothing else. */
        function onView(page) {
            return Pixels.same(Pixels.grab(mainWindow.contentItem), Pixels.grab(loader(page).item));
        }

        /** The visible pop-ups of the window. */
        function openPopups() {
            const overlay = mainWindow.contentItem.parent ? [] : mainWindow.contentItem.children;
            let count = 0;
            for (let i = 0; i < overlay.length; ++i) {
                const item = overlay[i];
                if (String(item).indexOf("QQuickOverlay") !== 0)
                    continue;
                for (let j = 0; j < item.children.length; ++j)
                    count += item.children[j].visible ? 1 : 0;
            }
            return count;
        }

        function test_windowHasTheScreensSize() {
            compare(mainWindow.width, 800);
            compare(mainWindow.height, 480);
            verify(mainWindow.visible);
            verify(Qt.colorEqual(mainWindow.color, "#000000"));
            ScreenController.width = 1280;
            compare(mainWindow.width, 1280);
            ScreenController.width = 800;
        }

        function test_startsWithTheWelcomePageAlone() {
            compare(mainWindow.currentScreen, "Welcome");
            compare(mainWindow.screenList, pages);
            compare(alive(), ["Welcome"]);
            compare(loader("Welcome").item.objectName, "Welcome");
            compare(mainWindow.get_player_window(480), "RoonPlayerWindow2");
            verify(logged("info: get_player_window() RoonPlayerWindow2"));
        }

        function test_eachLoaderLogsTheScreen() {
            const lines = Messages.all.filter(function(line) { return line.startsWith("debug: screen properties:"); });
            compare(lines.length, pages.length);
        }

        function test_aPageIsShownAndConfirmedAndTheOldOneGoes_data() {
            return pages.slice(1).map(function(page) { return { tag: page, page: page }; });
        }

        function test_aPageIsShownAndConfirmedAndTheOldOneGoes(row) {
            show(row.page);
            verify(logged("debug: onSetScreen() " + row.page));
            compare(mainWindow.currentScreen, row.page);
            compare(Navigation.calls, ["screenChanged " + row.page]);
            compare(alive(), [row.page]);
            verify(loader(row.page).visible);
            compare(loader(row.page).item.width, 800);
            compare(loader(row.page).item.height, 480);
            compare(placeOf(loader(row.page).item), Qt.point(0, 0));
            tryVerify(function() { return onView(row.page); });
        }

        function test_aSlideWouldComeFromTheRight() {
            const page = loader("Welcome").item;
            const slide = find(loader("Welcome"), "slideIn");
            verify(loader("Welcome").asynchronous);
            steps.places = [];
            steps.target = page;
            slide.start();
            compare(placeOf(page).x, 800);
            tryVerify(function() { return placeOf(page).x === 0; });
            steps.target = null;
            // It takes 600 ms and slows down with the third power: the place tells how long ago it began.
            const begins = steps.places.filter(function(step) { return step.x < 790 && step.x > 10; })
                                       .map(function(step) { return step.time - 600 * (1 - Math.cbrt(step.x / 800)); });
            verify(begins.length > 3);
            verify(Math.max.apply(null, begins) - Math.min.apply(null, begins) < 30, begins.join());
        }

        function test_thePageOnViewIsNotConfirmedAgain() {
            Navigation.setScreen("Welcome");
            compare(Navigation.calls, []);
            compare(alive(), ["Welcome"]);
        }

        function test_anUnknownNameHidesEveryPageUnconfirmed() {
            Navigation.setScreen("NoSuchPage");
            compare(mainWindow.currentScreen, "NoSuchPage");
            compare(Navigation.calls, []);
            compare(alive(), []);
            compareColour(colourOnView(mainWindow.contentItem, mainWindow.contentItem), "black");
            show("Welcome");
            compare(alive(), ["Welcome"]);
        }

        function test_aPageIsBuiltAfreshEachTime() {
            show("RoonPlayerWindow2");
            const before = loader("RoonPlayerWindow2").item;
            before.gl_show_debug_lines = true;
            show("Clock");
            show("RoonPlayerWindow2");
            verify(!loader("RoonPlayerWindow2").item.gl_show_debug_lines);
        }

        function test_aPageThatIsStillBeingBuiltCanBeLeft() {
            for (let i = 0; i < 50; ++i) {
                Navigation.setScreen("RoonPlayerWindow2");
                compare(loader("RoonPlayerWindow2").status, Loader.Loading);
                if (i % 3 === 1)
                    wait(i % 7);
                Navigation.setScreen("Clock");
            }
            tryCompare(loader("Clock"), "status", Loader.Ready);
            // The page that was left is finished before it goes, and may still be at it.
            tryVerify(() => alive().join() === "Clock");
        }

        function test_aPageThatIsLeftWhileItIsBuiltIsFinishedAndThenGoes() {
            const player = loader("RoonPlayerWindow2");
            Navigation.setScreen("RoonPlayerWindow2");
            Navigation.setScreen("Clock");
            compare(player.status, Loader.Loading);
            verify(!player.visible);
            tryCompare(player, "active", false);
            tryCompare(loader("Clock"), "status", Loader.Ready);
            compare(alive(), ["Clock"]);
        }

        function test_popupsCloseWithTheirPage_data() {
            return [ { tag: "volume", opener: "volumeBox" }, { tag: "zones", opener: "zoneName" } ];
        }

        function test_popupsCloseWithTheirPage(row) {
            Player.volumeAvailable = true;
            RoonZones.zones = ["Kitchen"];
            show("RoonPlayerWindow2");
            tap(find(loader("RoonPlayerWindow2").item, row.opener));
            tryVerify(function() { return openPopups() === 1; });
            Navigation.setScreen("Clock");
            compare(openPopups(), 0);
            tryCompare(loader("Clock"), "status", Loader.Ready);
            compare(openPopups(), 0);
            // Nothing of the closed pop-up may still catch touches.
            Navigation.calls = [];
            show("RoonPlayerWindow2");
            Navigation.calls = [];
            tap(find(loader("RoonPlayerWindow2").item, "cover"));
            compare(Navigation.calls, ["cycleDisplayOutput"]);
        }

        function test_aSliderThatIsBeingDraggedGoesWithItsPage() {
            Player.volumeAvailable = true;
            Player.limitSoftVolume = 100;
            show("RoonPlayerWindow2");
            const page = loader("RoonPlayerWindow2").item;
            tap(find(page, "volumeBox"));
            tryVerify(function() { return openPopups() === 1; });
            const slider = find(find(page, "volumeDialog"), "volumeSlider");
            const touch = drag(slider, 20, 20, 200, 20, false);
            verify(slider.pressed);
            Navigation.setScreen("Clock");
            compare(openPopups(), 0);
            touch.release(1, mainWindow.contentItem, 200, 20).commit();
            tryCompare(loader("Clock"), "status", Loader.Ready);
            compare(alive(), ["Clock"]);
            Player.limitSoftVolume = 0;
        }

        function test_aTouchMayReplaceThePageItTouches() {
            show("RoonPlayerWindow2");
            const page = loader("RoonPlayerWindow2").item;
            Navigation.answerCycle = function() { Navigation.setScreen("Clock"); };
            tap(find(page, "cover"));
            Navigation.answerCycle = null;
            tryCompare(loader("Clock"), "status", Loader.Ready);
            compare(alive(), ["Clock"]);
        }

        function test_swappedAndRotatedPanel() {
            ScreenController.swapped = true;
            const area = find(mainWindow, "rotator");
            const place = function() {
                return area.mapToItem(mainWindow.contentItem, 0, 0, area.width, area.height);
            };
            compare(place(), Qt.rect(160, -160, 480, 800));
            ScreenController.swapped = false;
            compare(place(), Qt.rect(0, 0, 800, 480));
            ScreenController.rotation = 180;
            ScreenController.rotated = true;
            compare(area.mapToItem(mainWindow.contentItem, 0, 0), Qt.point(800, 480));
            compare(area.mapToItem(mainWindow.contentItem, 800, 480), Qt.point(0, 0));
            ScreenController.rotated = false;
            ScreenController.rotation = 0;
        }

        Connections {
            id: steps

            property var places: []

            function onXChanged() {
                places.push({ x: target.mapToItem(testCase.mainWindow.contentItem, 0, 0).x, time: Date.now() });
            }

            target: null
        }
    }
}
