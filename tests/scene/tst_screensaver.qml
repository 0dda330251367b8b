// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import SceneTest 1.0
import Velunor.Navigation 1.0

Item {
    id: top

    width: 1280
    height: 800

    SceneTestCase {
        name: "ScreenSaver"

        property var page: null

        function prepare() {
            Navigation.calls = [];
            page = create("ScreenSaver.qml", top);
        }

        function test_isBlackAndOfItsOwnSize() {
            compare(page.objectName, "ScreenSaver");
            compare(page.width, 800);
            compare(page.height, 480);
            compare(Pixels.drawn(Pixels.grab(page)), Qt.rect(0, 0, 800, 480));
            compareColour(colourOnView(page, page), "#000000");
        }

        function test_aTouchAnywhereWakes_data() {
            return [ { tag: "middle", x: 640, y: 400 }, { tag: "left top", x: 1, y: 1 },
                     { tag: "right bottom", x: 1279, y: 799 } ];
        }

        function test_aTouchAnywhereWakes(row) {
            // As the loader does on a larger panel.
            page.width = 1280;
            page.height = 800;
            tap(page, row.x, row.y);
            compare(Navigation.calls, ["leaveScreenSaver"]);
            verify(logged("info: onClicked()"));
        }
    }
}
