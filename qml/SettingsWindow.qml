// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Navigation 1.0
import Velunor.Roon 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0
import "components"

/** The two brightness levels. Every change shows at once; only "Save" keeps it. */
Rectangle {
    id: root

    /** Leaves the page, with the brightness levels of the start-up. */
    function cancel() {
        ScreenController.restoreSettings();
        Navigation.clickedLeaveSettings();
    }

    /** Leaves the page and keeps the brightness levels. */
    function save() {
        console.debug("SettingsWindow: SAVE");
        ScreenController.saveSettings();
        Navigation.clickedLeaveSettings();
    }

    objectName: "SettingsWindow"
    width: ScreenController.width
    height: ScreenController.height
    color: Theme.background
    onVisibleChanged: {
        console.debug("settingsWindow:onVisibleChanged: " + visible);
        if (visible)
            inactivityTimer.restart();
        else
            inactivityTimer.stop();
    }

    // A page that is built while its loader is on view gets no signal of its visibility.
    Component.onCompleted: inactivityTimer.start()

    PageText {
        id: title

        objectName: "title"
        x: 20
        y: 20
        font.pixelSize: 28
        text: qsTr("Velunor Settings")

        TouchArea {
            margin: Theme.touchMargin
            onTouched: root.cancel()
        }
    }

    PageText {
        objectName: "address"
        anchors { left: title.right; leftMargin: 10; verticalCenter: title.verticalCenter }
        color: Theme.secondaryText
        font.pixelSize: 20
        text: "(" + Roon.ipAddress + ")"
    }

    BrightnessRow {
        id: screenBrightness

        objectName: "screenBrightness"
        x: 40
        y: 131
        brightness: Settings.brightness
        minBrightness: ScreenController.minBrightness
        maxBrightness: ScreenController.maxBrightness
        text: qsTr("Screen brightness")
        onChosen: {
            Settings.brightness = value;
            inactivityTimer.restart();
        }
    }

    BrightnessRow {
        objectName: "clockBrightness"
        x: screenBrightness.x
        anchors { top: screenBrightness.bottom; topMargin: 25 }
        brightness: Settings.clockBrightness
        minBrightness: ScreenController.minBrightness
        maxBrightness: ScreenController.maxBrightness
        text: qsTr("Clock brightness")
        onChosen: {
            Settings.clockBrightness = value;
            inactivityTimer.restart();
        }
    }

    PageText {
        objectName: "webHint"
        anchors.centerIn: parent
        font.italic: true
        font.pixelSize: 20
        text: qsTr("For other screen settings please visit Velunor's webpage")
    }

    FramedButton {
        objectName: "save"
        anchors { right: parent.right; rightMargin: 30; bottom: parent.bottom; bottomMargin: 30 }
        width: 120
        height: 50
        pixelSize: 20
        touchMargin: Theme.touchMargin
        text: qsTr("Save")
        onTouched: root.save()
    }

    Timer {
        id: inactivityTimer

        objectName: "inactivityTimer"
        interval: 30000
        onTriggered: {
            console.debug("SettingsWindow: time out");
            root.cancel();
        }
    }
}
