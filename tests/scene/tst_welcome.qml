// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0
import Velunor.Screen 1.0

Item {
    id: top

    width: 1280
    height: 800

    SceneTestCase {
        name: "Welcome"

        property var page: null

        function prepare() {
            Navigation.calls = [];
            page = create("Welcome.qml", top);
        }

        function cleanupTestCase() {
            resize(800, 480);
        }

        function resize(width, height) {
            ScreenController.width = width;
            ScreenController.height = height;
        }

        function test_pageHasTheScreensSize_data() {
            return [ { tag: "800x480", width: 800, height: 480 }, { tag: "1280x720", width: 1280, height: 720 },
                     { tag: "1280x800", width: 1280, height: 800 } ];
        }

        function test_pageHasTheScreensSize(row) {
            resize(row.width, row.height);
            compare(page.objectName, "Welcome");
            compare(page.width, row.width);
            compare(page.height, row.height);
            verify(Qt.colorEqual(page.color, "#000000"));
        }

        function test_logoFillsTheLeftHalf() {
            resize(800, 480);
            const logo = find(page, "logo");
            compare(logo.x, 0);
            compare(logo.y, 48);
            compare(logo.width, 400);
            compare(logo.height, 384);
            const picture = find(logo, "icon");
            tryCompare(picture, "status", Image.Ready);
            compare(picture.fillMode, Image.PreserveAspectFit);
            // The logo fills a square from border to border, or almost.
            const drawn = Pixels.drawn(Pixels.grab(logo));
            verify(drawn.width > 300 && drawn.height > 300, String(drawn));
            verify(looksLike(picture, "qrc:/images/Velunor_logo_v020-07.png"));
            verify(colourOnView(page, picture).hsvValue > 0.5);
        }

        function test_textsStandInTheirBoxes_data() {
            return [ { tag: "800x480", width: 800, height: 480 }, { tag: "1280x800", width: 1280, height: 800 } ];
        }

        function test_textsStandInTheirBoxes(row) {
            resize(row.width, row.height);
            const greeting = find(page, "greeting");
            compare(greeting.text, "Welcome!");
            compare(greeting.font.family, "Noto Sans");
            compare(greeting.font.pixelSize, row.width / 16);
            compare(greeting.width, 0.4 * row.width);
            compare(greeting.height, 0.2 * row.height);
            fuzzyCompare(greeting.x + greeting.width / 2, 0.7 * row.width, 1);
            fuzzyCompare(greeting.y + greeting.height / 2, 0.3 * row.height, 1);
            compare(greeting.fontInfo.pixelSize, greeting.font.pixelSize);

            const motto = find(page, "motto");
            verify(motto.text.length > 0);
            compare(motto.lineCount, 1);
            compare(motto.font.pixelSize, Math.round(row.width / 38));
            compare(motto.width, 0.2 * row.width);
            compare(motto.height, 0.1 * row.height);
            fuzzyCompare(motto.x + motto.width / 2, 0.7 * row.width, 1);
            fuzzyCompare(motto.y + motto.height / 2, 0.4 * row.height, 1);
            verify(motto.contentWidth <= motto.width);
            compareColour(colourOnView(page, greeting), "#ffffff");
            compareColour(colourOnView(page, motto), "#a8a0a0");
            compare(motto.fontInfo.pixelSize, motto.font.pixelSize);
        }

        function test_touchesDoNothing() {
            tap(page);
            compare(Navigation.calls, []);
        }
    }
}
