// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick 2.15

/** Colours, the font family and the sizes that more than one place uses, named for their role. */
QtObject {
    /** Family of all texts. */
    readonly property string fontFamily: "Noto Sans"

    // All pages.
    readonly property color background: "#000000"
    readonly property color invisible: "transparent"
    readonly property color primaryText: "#ffffff"
    readonly property color secondaryText: "#a8a0a0"
    readonly property color accent: "#5A9BE3"
    readonly property color coverBorder: "#a8a0a0"
    /** A scrolling label that was given no colour is meant to stand out. */
    readonly property color unsetText: "#ed3131"

    // Outlines of the layout's boxes, shown only for work on the layout.
    readonly property color debugOutline: "cyan"
    readonly property color debugTransportOutline: "red"

    // The offer of an update.
    readonly property color badge: "orange"
    readonly property color badgeBorder: "black"
    readonly property color badgeText: "black"

    /** The clock where the settings name no colour. */
    readonly property color clockText: "#545050"

    // Buttons with a frame.
    readonly property color buttonFrame: "#ffffff"
    readonly property color buttonPressed: "#444"

    // Pop-ups, and the controls on them.
    readonly property color popupPanel: "#a8a0a0"
    readonly property color popupBorder: "#444"
    readonly property color popupText: "black"
    readonly property color popupLimitText: "#696969"
    readonly property color sliderGroove: "#696969"
    readonly property color sliderHandle: "#ffffff"
    readonly property color listHeader: "darkgrey"
    readonly property color listHighlight: "lightsteelblue"

    // Icons of the player, panels of pop-ups, and controls that nothing can be done with.
    readonly property real iconOpacity: 0.9
    readonly property real popupOpacity: 0.9
    readonly property real unusableOpacity: 0.4

    /** How far an enlarged touch area or name reaches beyond its box, in pixels. */
    readonly property int touchMargin: 10
    /** A pop-up that nobody touches closes after this time, in milliseconds. */
    readonly property int popupTimeout: 5000
    /** Pixel size of the smallest and largest volume in the volume dialog. */
    readonly property int volumeLimitSize: 26
}
