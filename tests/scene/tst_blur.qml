// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtTest 1.15
import Velunor.Player 1.0
import Velunor.Settings 1.0

/** The blurred background, which needs OpenGL. */
Item {
    id: top

    width: 800
    height: 480

    SceneTestCase {
        name: "Blur"

        property var page: null

        function prepare() {
            Settings.ShowBlurBackground = true;
            Player.roonState = "paused";
            Player.playAllowed = true;
            Player.song = "Blue in Green";
            Player.imageKey = "abc";
            page = create("RoonPlayerWindow2.qml", top);
            tryCompare(find(page, "coverPicture"), "status", Image.Ready);
        }

        /** Brightness of the page between artist and edge, where there is nothing but background. */
        function background() {
            const picture = grabImage(page);
            return picture.red(700, 170) + picture.green(700, 170) + picture.blue(700, 170);
        }

        function test_backgroundGlowsOnlyWhileWanted() {
            tryVerify(function() { return background() > 20; });
            const blur = find(page, "blur").item;
            verify(blur.cached);
            // The numbers are asked for; what they look like, test_anEdgeIsSpreadAndDim() tells.
            compare(blur.opacity, 0.2);
            compare(blur.deviation, 9);
            compare(blur.radius, 32);
            compare(blur.samples, 16);
            Settings.ShowBlurBackground = false;
            tryVerify(function() { return background() === 0; });
            compare(find(page, "blur").item, null);
        }

        /** The picture that is white up to x = 600 and black from there. */
        function test_anEdgeIsSpreadAndDim() {
            Player.imageKey = "edge";
            function at(x) {
                return grabImage(page).red(x, 190);
            }
            tryVerify(function() { return at(540) > 20; });
            // A fifth of white, which fades over 32 pixels to either side.
            fuzzyCompare(at(540), 51, 1);
            fuzzyCompare(at(564), 51, 1);
            fuzzyCompare(at(576), 43, 3);
            fuzzyCompare(at(588), 34, 3);
            fuzzyCompare(at(600), 25, 3);
            fuzzyCompare(at(612), 14, 3);
            fuzzyCompare(at(624), 5, 3);
            fuzzyCompare(at(636), 0, 1);
        }

        function test_newCoverNewBackground() {
            tryVerify(function() { return background() > 20; });
            const before = grabImage(page);
            Player.imageKey = "another";
            tryVerify(function() { return !grabImage(page).equals(before); });
        }

        function test_aRestingPageDrawsNothing() {
            tryVerify(function() { return background() > 20; });
            wait(200);
            countFrames(page);
            wait(500);
            compare(frames.count, 0);
        }
    }
}
