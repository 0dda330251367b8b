// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/**
 * The volume dialog: one step down, one step up, or any volume up to the zone's soft limit. It only tells what is asked
 * for; what it shows changes when the zone's volume does.
 */
PanelPopup {
    id: root

    /** Id of the zone whose volume this is. What a finger has begun ends when it changes. */
    property string zoneId
    /** Whether there is a volume to be changed; without one the dialog cannot be open. */
    property bool volumeAvailable: true

    // In the zone's own units. NaN for a limit that is not known: then there is nothing to slide.
    property real volume
    property real limitMinVolume
    property real limitMaxVolume
    property real limitSoftVolume

    /** Decimals of the volumes shown. */
    property int volumeDisplayPrecision
    /** What lies between two places of the slider; 0 or less where every value counts. */
    property real volumeStep

    // A tap on one of the loudspeakers, which asks for a step. The value is that of the slider, without its decimals.
    signal volumeUp(int value)
    signal volumeDown(int value)

    /** The slider was moved to this volume, to the tenth and within the limits. */
    signal volumeMoved(real value)

    /** For the dialog itself. */
    function closeWithoutVolume() {
        if (!volumeAvailable)
            close();
    }

    /** Ends what a finger has begun, on the slider or a loudspeaker. */
    function interrupt() {
        slider.interrupt();
        downIcon.interrupt();
        upIcon.interrupt();
    }

    objectName: "volumeDialog"
    panelWidth: 600
    panelHeight: 200
    radius: 4
    border.color: Theme.popupBorder
    onZoneIdChanged: interrupt()
    onVolumeAvailableChanged: closeWithoutVolume()
    onOpened: closeWithoutVolume()

    VolumeStepIcon {
        id: downIcon

        objectName: "volumeDown"
        x: 15
        y: 62
        source: "../../icons/baseline_volume_down_black_48dp.png"
        onTouched: {
            console.info("VOLUME DOWN");
            root.volumeDown(slider.value);
            root.restartCloseTimer();
        }
    }

    VolumeStepIcon {
        id: upIcon

        objectName: "volumeUp"
        x: 505
        y: 62
        source: "../../icons/baseline_volume_up_black_48dp.png"
        onTouched: {
            console.info("VOLUME UP");
            root.volumeUp(slider.value);
            root.restartCloseTimer();
        }
    }

    TouchSlider {
        id: slider

        objectName: "volumeSlider"
        x: 90
        y: 78
        width: 400
        source: root.volume
        // Deliberate: up to the soft limit, not to the maximum; a finger cannot go beyond what the user allowed.
        lowest: Format.tenthNotBelow(root.limitMinVolume)
        highest: Format.tenthNotAbove(root.limitSoftVolume)
        step: root.volumeStep
        // Half of a command's last decimal, plus the difference of 0.1 that the player ignores, in single precision.
        tolerance: 0.151
        onChosen: {
            root.stopCloseTimer();
            root.volumeMoved(value);
        }
        onPressedChanged: {
            if (pressed)
                root.stopCloseTimer();
            else
                root.restartCloseTimer();
        }
    }

    PageText {
        objectName: "minimumText"
        x: 40
        y: 140
        color: Theme.popupLimitText
        font.bold: true
        font.pixelSize: Theme.volumeLimitSize
        text: Format.volume(root.limitMinVolume, root.volumeDisplayPrecision)
    }

    PageText {
        objectName: "maximumText"
        x: 530
        y: 140
        color: Theme.popupLimitText
        font.bold: true
        font.pixelSize: Theme.volumeLimitSize
        text: Format.volume(root.limitMaxVolume, root.volumeDisplayPrecision)
    }

    PageText {
        objectName: "softLimitText"
        x: 460
        y: 110
        color: Theme.popupLimitText
        font.pixelSize: 22
        text: Format.volume(root.limitSoftVolume, root.volumeDisplayPrecision)
    }

    PageText {
        objectName: "currentText"
        x: 275
        y: 20
        color: Theme.popupText
        font.bold: true
        font.pixelSize: 48
        text: Format.volume(root.volume, root.volumeDisplayPrecision)
    }
}
