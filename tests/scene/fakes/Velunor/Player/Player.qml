// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick 2.15

QtObject {
    /** What the scene called, in order: the name, and the argument if there is one. */
    property var calls: []

    property string roonState: "init"
    property string song
    property string artist
    property string album
    property string imageKey
    property bool remoteConnected: true
    property int seekPosition: 0
    property bool autoRadio: false
    property string loop
    property bool shuffle: false
    property int length: 0
    property string zone: "UNKNOWN"
    property string wantedZone: "Hugo2X"
    property bool volumeAvailable: false
    property real volume: 0
    property real minVolume: 0
    property real maxVolume: 0
    property real limitMinVolume: 0
    property real limitMaxVolume: 0
    property real limitSoftVolume: 0
    property real volumeStep: 0
    property real volumeMuted: 0
    property int volumeDisplayPrecision: 0
    readonly property string seekPositionText: clockText(seekPosition)
    readonly property string lengthText: clockText(length)
    property int queueItemsRemaining: 0
    property bool prevAllowed: false
    property bool nextAllowed: false
    property bool pauseAllowed: false
    property bool playAllowed: false
    property bool seekAllowed: false

    function clockText(seconds) {
        return Math.floor(seconds / 60) + ":" + String(seconds % 60).padStart(2, "0");
    }

    function record(call) { calls.push(call); }

    function playPause() { record("playPause"); }
    function prev() { record("prev"); }
    function next() { record("next"); }
    function clickedRadioButton() { record("clickedRadioButton"); }
    function clickedShuffleButton() { record("clickedShuffleButton"); }
    function clickedLoopButton() { record("clickedLoopButton"); }
    function movedVolumeSlider(value) { record("movedVolumeSlider " + value); }
    function commandVolumeDown() { record("commandVolumeDown"); }
    function commandVolumeUp() { record("commandVolumeUp"); }
    function selectZone(name) { record("selectZone " + name); }
    function installUpdate() { record("installUpdate"); }
}
