// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** Previous, play or pause, and next. */
LayoutBox {
    id: root

    // Which of the icons are shown; the cells answer taps in any case.
    property bool previousAllowed: false
    property bool nextAllowed: false
    property bool playPauseAllowed: false

    /** Whether the middle icon offers to pause or stop rather than to play. */
    property bool playing: false
    /** Whether it offers to pause rather than to stop. */
    property bool seekAllowed: false

    // A tap on one of the cells. It changes nothing here.
    signal previousTouched()
    signal playPauseTouched()
    signal nextTouched()

    outlineColor: Theme.debugTransportOutline

    // The cells answer taps even while their icons are hidden.
    Row {
        anchors.fill: parent

        SkipButton {
            objectName: "previous"
            outlined: root.outlined
            outlineColor: root.outlineColor
            iconVisible: root.previousAllowed
            source: "../../icons/round_skip_previous_white_48dp.png"
            onTouched: root.previousTouched()
        }

        IconButton {
            objectName: "playPause"
            width: parent.width / 3
            height: parent.height
            outlined: root.outlined
            outlineColor: root.outlineColor
            iconVisible: root.playPauseAllowed
            // A stream that cannot seek cannot pause either: it stops.
            source: !root.playing ? "../../icons/round_play_arrow_white_48dp.png"
                  : root.seekAllowed ? "../../icons/round_pause_white_48dp.png"
                  : "../../icons/round_stop_white_48dp.png"
            onTouched: root.playPauseTouched()
        }

        SkipButton {
            objectName: "next"
            outlined: root.outlined
            outlineColor: root.outlineColor
            iconVisible: root.nextAllowed
            source: "../../icons/round_skip_next_white_48dp.png"
            onTouched: root.nextTouched()
        }
    }
}
