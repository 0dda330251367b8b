// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Player 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0

/** The choice of another zone; the rest of the page is the notices' own. */
Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "ZoneNotFound"

        property var page: null
        property var button: null
        property var dialog: null

        function prepare() {
            Navigation.calls = [];
            Player.calls = [];
            RoonZones.zones = ["Bath", "Hall"];
            page = create("RoonZoneNotFound.qml", top);
            button = find(page, "chooserButton");
            dialog = find(page, "zoneDialog");
        }

        function cleanupTestCase() {
            RoonZones.zones = [];
            ScreenController.rotated = false;
            ScreenController.rotation = 0;
        }

        function openDialog() {
            tap(button);
            tryCompare(dialog, "opened", true);
        }

        function test_button() {
            const box = find(page, "chooserBox");
            compare(box.x, 40);
            compare(box.y, 288);
            compare(box.width, 720);
            compare(box.height, 72);
            compare(button.text, "Or click here to select a different zone");
            compare(button.pixelSize, Math.round(720 / 26));
            compare(find(button, "text").fontInfo.pixelSize, button.pixelSize);
            compare(button.radius, 10);
            const picture = Pixels.grab(button);
            const middle = Math.round(button.height / 2);
            for (const x of [0, 1])
                compareColour(Pixels.at(picture, x, middle), "#ffffff");
            compare(Pixels.at(picture, 2, middle).a, 0);
            compareColour(colourOnView(page, button), "#ffffff");
        }

        function test_buttonComesAndGoesWithTheZones() {
            RoonZones.zones = [];
            compareColour(colourOnView(page, button), "black");
            RoonZones.zones = ["Kitchen"];
            compareColour(colourOnView(page, button), "white");
        }

        function test_buttonOpensTheChooserAndTakesTheTouch() {
            openDialog();
            verify(logged("debug: open zonedialog"));
            compare(Navigation.calls, []);
            compare(find(dialog, "zoneList").count, 2);
        }

        function test_withoutZonesTheTouchReachesThePage() {
            RoonZones.zones = [];
            tap(find(page, "chooserBox"));
            compare(Navigation.calls, ["cycleDisplayOutput"]);
            verify(logged("info: ZoneNotFound::onClicked"));
            verify(!dialog.visible);
        }

        function test_aTouchElsewhereCycles_data() {
            return [ { tag: "left top", x: 1, y: 1 }, { tag: "line", x: 400, y: 120 },
                     { tag: "right bottom", x: 799, y: 479 } ];
        }

        function test_aTouchElsewhereCycles(row) {
            tap(page, row.x, row.y);
            compare(Navigation.calls, ["cycleDisplayOutput"]);
            verify(logged("info: ZoneNotFound::onClicked"));
        }

        function test_theChosenZoneIsSelected() {
            openDialog();
            tap(find(dialog, "zoneList").itemAtIndex(1));
            compare(Player.calls, ["selectZone Hall"]);
            verify(logged("debug: ZONE SELECTED! Hall"));
            tryCompare(dialog, "visible", false);
            compare(Navigation.calls, []);
        }

        function test_theChooserGoesWithThePage() {
            openDialog();
            page.visible = false;
            tryCompare(dialog, "visible", false);
        }

        function test_theChooserIsTurnedWithTheScreen() {
            openDialog();
            const panel = find(dialog, "panel");
            compare(panel.mapToItem(null, 0, 0), Qt.point(50, 50));
            ScreenController.rotation = 180;
            ScreenController.rotated = true;
            compare(panel.mapToItem(null, 0, 0), Qt.point(750, 430));
            ScreenController.rotated = false;
            compare(panel.mapToItem(null, 0, 0), Qt.point(50, 50));
        }
    }
}
