// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick 2.15

QtObject {
    /** What the scene called, in order. */
    property var calls: []

    property bool swapped: false
    property bool rotated: false
    property int rotation: 0
    property int width: 800
    property int height: 480
    property int minBrightness: 13
    property int maxBrightness: 254

    function saveSettings() { calls.push("saveSettings"); }
    function restoreSettings() { calls.push("restoreSettings"); }
}
