// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15
import Velunor.Screen 1.0

Item {
    id: top

    width: 800
    height: 480

    Component {
        id: panelComponent

        Window {
            width: 800
            height: 480
            visible: true

            Item {
                objectName: "area"
                width: 800
                height: 480
            }
        }
    }

    SceneTestCase {
        name: "ScreenRotator"

        function cleanup() {
            checkComplaints();
            ScreenController.rotation = 0;
        }

        function rotator(properties) {
            const panel = createTemporaryObject(panelComponent, null);
            return create("components/ScreenRotator.qml", find(panel, "area"), properties);
        }

        function test_fillsItsParentByDefault() {
            const item = rotator();
            verify(!item.isSwapped);
            verify(!item.isRotated);
            compare(corners(item), [0, 0, 800, 480]);
        }

        function test_swappedSidesStayCentred() {
            const item = rotator({ isSwapped: true });
            compare(item.width, 480);
            compare(item.height, 800);
            compare(corners(item), [160, -160, 640, 640]);
        }

        function test_angleCountsOnlyWhenRotated_data() {
            return [
                { tag: "180", angle: 180, swapped: false, corners: [800, 480, 0, 0] },
                { tag: "90", angle: 90, swapped: true, corners: [800, 0, 0, 480] },
                { tag: "270", angle: 270, swapped: true, corners: [0, 480, 800, 0] }
            ];
        }

        function test_angleCountsOnlyWhenRotated(row) {
            ScreenController.rotation = row.angle;
            compare(corners(rotator()), [0, 0, 800, 480]);
            compare(corners(rotator({ isRotated: true, isSwapped: row.swapped })), row.corners);
        }

        /** Where the left upper and the right lower corner of the pages lie on the panel. */
        function corners(item) {
            const first = item.mapToItem(item.parent, 0, 0);
            const last = item.mapToItem(item.parent, item.width, item.height);
            return [first.x, first.y, last.x, last.y].map(Math.round);
        }

        function test_rotatedReportsItselfAndTakesTheWholeScreen() {
            ScreenController.rotation = 90;
            const item = rotator({ isRotated: true, isSwapped: true });
            verify(logged("info: ScreenRotator width :480"));
            verify(logged("info: ScreenRotator height:800"));
            verify(logged("info: ScreenRotator angle :90"));
            tryCompare(item.Window.window, "visibility", Window.FullScreen);
        }

        function test_uprightLogsNothingAndKeepsTheWindow() {
            const item = rotator({ isSwapped: true });
            verify(!logged("info: ScreenRotator width :480"));
            compare(item.Window.window.visibility, Window.Windowed);
        }
    }
}
