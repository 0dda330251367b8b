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
            return create("ScreenRotator.qml", find(panel, "area"), properties);
        }

        function test_fillsItsParentByDefault() {
            const item = rotator();
            verify(!item.isSwapped);
            verify(!item.isRotated);
            compare(item.rotation, 0);
            compare(item.width, 800);
            compare(item.height, 480);
        }

        function test_swappedSidesStayCentred() {
            const item = rotator({ isSwapped: true });
            compare(item.width, 480);
            compare(item.height, 800);
            compare(item.x + item.width / 2, 400);
            compare(item.y + item.height / 2, 240);
        }

        function test_angleCountsOnlyWhenRotated() {
            ScreenController.rotation = 180;
            compare(rotator().rotation, 0);
            compare(rotator({ isRotated: true }).rotation, 180);
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
