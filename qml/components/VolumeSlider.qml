// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/** The volume dialog: one step down, one step up, or any volume up to the zone's soft limit. */
PanelPopup {
    id: root

    /** The zone whose volume this is.  What a finger has begun ends when it changes. */
    property string zoneId
    /** Whether there is a volume to be changed; without one the dialog cannot be open. */
    property bool volumeAvailable: true
    property real volume
    property real limitMinVolume
    property real limitMaxVolume
    property real limitSoftVolume
    property int volumeDisplayPrecision
    property real volumeStep

    signal volumeUp(int value)
    signal volumeDown(int value)
    signal volumeMoved(real value)

    function closeWithoutVolume() {
        if (!volumeAvailable)
            close();
    }

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
        // Deliberate: up to the soft limit, not to the maximum; a finger on the slider cannot pass what the user allowed.
        lowest: Format.tenthNotBelow(root.limitMinVolume)
        highest: Format.tenthNotAbove(root.limitSoftVolume)
        step: root.volumeStep
        // Half of a command's last decimal, and the difference of 0.1 that the player takes for none, in single floats.
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
