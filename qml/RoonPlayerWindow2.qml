// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Images 1.0
import Velunor.Navigation 1.0
import Velunor.Player 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0
import Velunor.Settings 1.0
import Velunor.VelunorState 1.0
import Velunor.Zones 1.0
import "components"
import "components/format.js" as Format

/** What the controlled zone plays, and everything that can be asked of it. */
Rectangle {
    id: root

    /** Whether the boxes show their outlines, for work on the layout. */
    property bool gl_show_debug_lines: false
    // Deliberate: the margins to the left and right are taken from the height as well.
    readonly property real margin: 0.01 * ScreenController.height
    readonly property bool nothingPlaying: Player.queueItemsRemaining === 0 && Player.roonState !== "playing"
                                           && Player.roonState !== "loading" && !Player.playAllowed
    readonly property bool playPauseAllowed: Player.playAllowed || Player.pauseAllowed
    // The precision has no signal, and is decided after the step has been reported, so it is read after that.
    property int volumePrecision: 0

    /** To be called once the player has decided on the precision. */
    function readVolumePrecision() {
        volumePrecision = Player.volumeDisplayPrecision;
    }

    objectName: "RoonPlayerWindow2"
    width: ScreenController.width
    height: ScreenController.height
    color: Theme.background
    Component.onCompleted: readVolumePrecision()

    ControlledZone {
        id: controlledZone

        objectName: "controlledZone"
    }

    CoverArtLoader {
        id: coverArt

        wanted: root.nothingPlaying ? "image://velunor/__VELUNOR_LOGO__" : "image://velunor/" + Player.imageKey
    }

    BlurredBackground {
        anchors.fill: parent
        source: coverArt.source
        blurred: Settings.ShowBlurBackground
    }

    HotSpot {
        objectName: "settingsCorner"
        anchors { right: parent.right; bottom: parent.bottom }
        width: ScreenController.width / 10
        onTouched: Navigation.clickedGotoSettings()
    }

    HotSpot {
        objectName: "cycleCorner"
        anchors { right: parent.right; top: parent.top }
        width: ScreenController.width / 10
        onTouched: Navigation.cycleDisplayOutput()
    }

    CoverArt {
        id: cover

        objectName: "cover"
        anchors { left: parent.left; leftMargin: root.margin; bottom: parent.bottom; bottomMargin: root.margin }
        width: 0.5 * ScreenController.width
        height: width
        source: coverArt.source
        onTouched: {
            console.info("CoverArt clicked");
            Navigation.cycleDisplayOutput();
        }
    }

    Item {
        id: panel

        objectName: "panel"
        anchors { left: cover.right; leftMargin: 0.01 * ScreenController.width }
        anchors { right: parent.right; rightMargin: root.margin; bottom: parent.bottom; bottomMargin: root.margin }
        height: 0.5 * ScreenController.width

        AlbumAndArtist {
            anchors { left: parent.left; right: parent.right; top: parent.top }
            height: 0.24 * panel.height
            outlined: root.gl_show_debug_lines
            album: root.nothingPlaying ? "" : Player.album
            albumSize: ScreenController.width / 28
            artist: root.nothingPlaying ? "" : Player.artist
            artistSize: ScreenController.width / 26
            scrollingEnabled: Settings.scrolling
        }

        VolumeBox {
            id: volumeBox

            objectName: "volumeBox"
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 0.62 * panel.height }
            width: 0.5 * panel.width
            height: 0.15 * panel.height
            outlined: root.gl_show_debug_lines
            visible: Player.volumeAvailable
            volumeText: Format.volume(Player.volume, root.volumePrecision)
            onTouched: volumeDialog.open()

            Connections {
                target: Player

                function onVolumeChanged() {
                    volumeBox.highlight();
                }

                function onVolumeStepChanged() {
                    Qt.callLater(root.readVolumePrecision);
                }
            }
        }

        OptionRow {
            objectName: "optionRow"
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 0.45 * panel.height }
            width: 0.75 * panel.width
            height: 0.22 * panel.height
            outlined: root.gl_show_debug_lines
            autoRadio: Player.autoRadio
            shuffle: Player.shuffle
            loop: Player.loop
            iconsVisible: !Settings.hideOptionsButtons && Player.roonState !== "stopped"
            onRadioTouched: Player.clickedRadioButton()
            onShuffleTouched: Player.clickedShuffleButton()
            onLoopTouched: Player.clickedLoopButton()
        }

        TransportRow {
            objectName: "transportRow"
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 0.22 * panel.height }
            width: 0.75 * panel.width
            height: 0.22 * panel.height
            outlined: root.gl_show_debug_lines
            previousAllowed: Player.prevAllowed
            nextAllowed: Player.nextAllowed
            playPauseAllowed: root.playPauseAllowed
            playing: Player.roonState === "playing"
            seekAllowed: Player.seekAllowed
            onPreviousTouched: Player.prev()
            onPlayPauseTouched: {
                console.debug("PlayerWindow: playPause clicked");
                Player.playPause();
            }
            onNextTouched: Player.next()
        }

        UpdateBadge {
            objectName: "updateBadge"
            anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 0.15 * panel.height }
            width: panel.width / 2.5
            height: 0.07 * panel.height
            visible: VelunorState.UpdateAvailable && !VelunorState.UpdateInstalling
            onTouched: {
                console.debug("update clicked");
                Player.installUpdate();
            }
        }

        BottomLine {
            objectName: "bottomLine"
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom; bottomMargin: 0.04 * panel.height }
            height: 0.1 * panel.height
            outlined: root.gl_show_debug_lines
            seekPositionText: Player.seekPositionText
            seekPositionVisible: root.playPauseAllowed
            lengthText: Player.lengthText
            lengthVisible: root.playPauseAllowed && (Player.seekAllowed || Player.queueItemsRemaining > 0)
            timeSize: ScreenController.width / 28
            zone: Player.zone
            zoneSize: ScreenController.width / 32
            onZoneTouched: {
                console.debug("zone clicked");
                zoneDialog.open();
            }
        }

        ProgressBar {
            objectName: "progressBar"
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
            height: 0.03 * panel.height
            visible: root.playPauseAllowed
            seekPosition: Player.seekPosition
            length: Player.length
        }
    }

    ScrollingLine {
        objectName: "songTitle"
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: cover.top }
        anchors { leftMargin: 0.01 * ScreenController.width; rightMargin: 0.01 * ScreenController.width }
        outlined: root.gl_show_debug_lines
        bold: true
        textColor: Theme.primaryText
        // Deliberate: at this width a smaller title sits better between the edge of the screen and the cover.
        pixelSize: height / (ScreenController.width === 800 ? 1.7 : 1.4)
        text: root.nothingPlaying ? qsTr("Nothing Playing") : Player.song
        scrollDuration: 18000
        scrollingEnabled: Settings.scrolling
    }

    VolumeSlider {
        id: volumeDialog

        pageVisible: root.visible
        isRotated: ScreenController.rotated
        screenRotation: ScreenController.rotation
        zoneId: controlledZone.zoneId
        volumeAvailable: Player.volumeAvailable
        volume: Player.volume
        // Until the zone's own limits are there, those of the previous zone must not count for it.
        limitMinVolume: controlledZone.shown ? Player.limitMinVolume : NaN
        limitMaxVolume: controlledZone.shown ? Player.limitMaxVolume : NaN
        limitSoftVolume: controlledZone.shown ? Player.limitSoftVolume : NaN
        volumeDisplayPrecision: root.volumePrecision
        volumeStep: Player.volumeStep
        // The step may still be that of the previous zone.
        onVolumeDown: if (controlledZone.shown) Player.commandVolumeDown()
        onVolumeUp: if (controlledZone.shown) Player.commandVolumeUp()
        onVolumeMoved: Player.movedVolumeSlider(value)
    }

    ZoneDialog {
        id: zoneDialog

        pageVisible: root.visible
        isRotated: ScreenController.rotated
        screenRotation: ScreenController.rotation
        screenWidth: ScreenController.width
        screenHeight: ScreenController.height
        zones: RoonZones.zones
        onZoneSelected: {
            console.debug("ZONE SELECTED!");
            Player.selectZone(name);
        }
    }
}
