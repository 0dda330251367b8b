// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15
import QtTest 1.15
import Velunor.Navigation 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0
import "qrc:/qml/components" as Scene

/** The pages on panels that are mounted upside down or on their side: touches land where the finger is. */
Item {
    id: top

    width: 100
    height: 100

    Component {
        id: panelComponent

        Window {
            id: panel

            property string page
            property bool portrait: false

            width: 800
            height: 800
            visible: true

            Item {
                objectName: "area"
                width: panel.portrait ? 480 : 800
                height: panel.portrait ? 800 : 480

                Scene.ScreenRotator {
                    isSwapped: panel.portrait
                    isRotated: ScreenController.rotation !== 0

                    Loader {
                        objectName: "loader"
                        anchors.fill: parent
                        source: "qrc:/qml/" + panel.page + ".qml"
                    }
                }
            }
        }
    }

    SceneTestCase {
        name: "TurnedPages"

        property var area: null
        property int angle: 0

        function prepare() {
            Navigation.calls = [];
            ScreenController.calls = [];
            ScreenController.width = 800;
            ScreenController.height = 480;
            RoonZones.zones = ["Bath"];
            Settings.brightness = 13;
        }

        function cleanupTestCase() {
            RoonZones.zones = [];
            Settings.brightness = 150;
            ScreenController.rotation = 0;
        }

        function panels() {
            return [ { tag: "0", angle: 0 }, { tag: "90", angle: 90 }, { tag: "180", angle: 180 },
                     { tag: "270", angle: 270 } ];
        }

        /** Shows the page on a panel that is turned by this angle; 90 and 270 are portrait by nature. */
        function show(file, degrees) {
            angle = degrees;
            ScreenController.rotation = degrees;
            const panel = createTemporaryObject(panelComponent, null, { page: file, portrait: degrees % 180 !== 0 });
            area = find(panel, "area");
            const loader = find(area, "loader");
            compare(loader.width, 800);
            compare(loader.height, 480);
            return loader.item;
        }

        /** Where the finger has to be on the panel to touch this place of the page. */
        function place(x, y) {
            switch (angle) {
            case 90: return Qt.point(480 - y, x);
            case 180: return Qt.point(800 - x, 480 - y);
            case 270: return Qt.point(y, 800 - x);
            }
            return Qt.point(x, y);
        }

        function touchAt(x, y) {
            const finger = place(x, y);
            tap(area, finger.x, finger.y);
        }

        function test_saveIsUnderTheFinger_data() {
            return panels();
        }

        function test_saveIsUnderTheFinger(row) {
            show("SettingsWindow", row.angle);
            touchAt(740, 420);
            compare(ScreenController.calls, ["saveSettings"]);
            compare(Navigation.calls, ["clickedLeaveSettings"]);
            touchAt(60, 40);
            compare(ScreenController.calls, ["saveSettings", "restoreSettings"]);
        }

        function test_theSliderFollowsTheFinger_data() {
            return panels();
        }

        function test_theSliderFollowsTheFinger(row) {
            show("SettingsWindow", row.angle);
            const from = place(278, 142);
            const to = place(420, 142);
            drag(area, from.x, from.y, to.x, to.y);
            fuzzyCompare(Settings.brightness, 133, 5);
        }

        function test_theZoneButtonIsUnderTheFinger_data() {
            return panels();
        }

        function test_theZoneButtonIsUnderTheFinger(row) {
            const page = show("RoonZoneNotFound", row.angle);
            touchAt(100, 400);
            compare(Navigation.calls, ["cycleDisplayOutput"]);
            touchAt(700, 324);
            compare(Navigation.calls, ["cycleDisplayOutput"]);
            verify(find(page, "zoneDialog").visible);
        }

        function test_aPageTakesTouchesUpToItsEdges_data() {
            return panels();
        }

        function test_aPageTakesTouchesUpToItsEdges(row) {
            show("Clock", row.angle);
            touchAt(1, 1);
            touchAt(799, 1);
            touchAt(1, 479);
            touchAt(799, 479);
            compare(Navigation.calls, ["blankScreen", "blankScreen", "blankScreen", "blankScreen"]);
        }
    }
}
