// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** A label with a brightness slider on its line. */
PageText {
    id: root

    /** The brightness in force; it may lie outside the band of the panel, where the slider cannot follow. */
    property int brightness
    // Ends of the panel's brightness band.
    property alias minBrightness: slider.lowest
    property alias maxBrightness: slider.highest

    /** The user has set another brightness. */
    signal chosen(int value)

    font.pixelSize: 16

    TouchSlider {
        id: slider

        objectName: "slider"
        x: 261 - root.x
        anchors.verticalCenter: parent.verticalCenter
        width: 317
        height: 40
        source: root.brightness
        step: 1
        // Only a finger writes: neither the first value nor one that the slider had to clamp goes back.
        onChosen: root.chosen(value)
    }
}
