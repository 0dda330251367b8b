// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Navigation 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0
import "components"

/** Time and date, to be read from across the room. */
Rectangle {
    id: root

    /** Tells the time; a property, so that a clock that stands still can take its place. */
    property var now: function() { return new Date(); }
    // For a text that is no colour, Qt.lighter() gives null without a warning.
    readonly property color textColor: Qt.lighter(Settings.clockColorRGB) ? Settings.clockColorRGB : Theme.clockText

    /** Fills all texts for this time, by the setting for 12 or 24 hours. */
    function showTime(time) {
        if (Settings.timeFormat) {
            timeText.text = Qt.formatTime(time, "H:mm");
        } else {
            // Deliberate: only beside its marker does the hour come in twelves, so the marker is put in front and cut
            // off again. It has two characters in most languages, but not in all.
            markerText.text = Qt.formatTime(time, "AP");
            timeText.text = Qt.formatTime(time, "Ah:mm").substring(markerText.text.length);
        }
        markerText.visible = !Settings.timeFormat;
        weekdayText.text = Qt.formatDate(time, "dddd");
        dayText.text = Qt.formatDate(time, "dd");
        monthText.text = Qt.formatDate(time, "MMMM");
    }

    objectName: "Clock"
    width: ScreenController.width
    height: ScreenController.height
    color: Theme.background

    ClockText {
        id: timeText

        objectName: "time"
        anchors { centerIn: parent; verticalCenterOffset: -0.05 * root.height }
        width: 0.95 * root.width
        height: 0.85 * root.height
        color: root.textColor
        pixelSize: width / 2.8
        // Hours of two digits would run into the marker.
        room: markerText.visible ? 2 * (markerText.x - 0.52 * root.width) : width
        text: "07:23"
    }

    ClockText {
        id: markerText

        objectName: "marker"
        anchors { right: timeText.right; bottom: timeText.bottom; bottomMargin: 0.18 * root.height }
        width: 0.1 * root.width
        height: 0.13 * root.height
        visible: false
        color: root.textColor
        pixelSize: 0.7 * width
        room: 1.2 * width
        text: "AM"
    }

    ClockText {
        id: weekdayText

        objectName: "weekday"
        anchors { left: parent.left; leftMargin: 0.15 * root.width; bottom: dayText.bottom }
        width: 0.2 * root.width
        height: 0.1 * root.height
        color: root.textColor
        pixelSize: 0.3 * width
        room: 0.38 * root.width
    }

    ClockText {
        id: dayText

        objectName: "day"
        anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 0.04 * root.height }
        width: 0.1 * root.width
        height: 0.1 * root.height
        color: root.textColor
        pixelSize: 0.9 * width
        room: 1.2 * width
        text: "12"
    }

    ClockText {
        id: monthText

        objectName: "month"
        anchors { right: parent.right; rightMargin: 0.15 * root.width; bottom: dayText.bottom }
        width: 0.2 * root.width
        height: 0.1 * root.height
        color: root.textColor
        pixelSize: 0.3 * width
        room: 0.38 * root.width
        text: "November"
    }

    TouchArea {
        onTouched: {
            console.info("onClicked()");
            Navigation.blankScreen();
        }
    }

    Timer {
        objectName: "tick"
        interval: 1000
        repeat: true
        triggeredOnStart: true
        running: root.visible
        onTriggered: root.showTime(root.now())
    }
}
