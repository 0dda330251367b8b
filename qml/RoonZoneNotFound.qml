// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Navigation 1.0
import Velunor.Player 1.0
import Velunor.RoonZones 1.0
import Velunor.Screen 1.0
import "components"
import "components/format.js" as Format

/** The zone to be controlled is missing; where there are others, one of them can be chosen. */
NoticePage {
    id: root

    /** Whether there are zones to choose from. */
    readonly property bool zonesKnown: RoonZones.zones.length > 0

    objectName: "RoonZoneNotFound"
    title: qsTr("Zone Not Found")
    lines: [
        qsTr("We're still waiting for Roon zone <b>%1</b> to appear...").arg(Format.escaped(Format.beginning(Player.wantedZone))),
        qsTr("• Is the correct zone configured in <b>Velunor?</b>"),
        qsTr("• Is the zone enabled in <b>Roon</b>?"),
        qsTr("• Is your DAC turned on?")
    ]

    TouchArea {
        onTouched: {
            console.info("ZoneNotFound::onClicked");
            Navigation.cycleDisplayOutput();
        }
    }

    LayoutBox {
        id: chooserBox

        objectName: "chooserBox"
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.linesBottom
        width: 0.9 * root.width
        height: 0.15 * root.height
        outlined: root.gl_show_debug_lines

        // Without zones it is invisible and takes no touch, which then reaches the page.
        FramedButton {
            objectName: "chooserButton"
            anchors { fill: parent; topMargin: 0.1 * chooserBox.height; bottomMargin: 0.1 * chooserBox.height }
            visible: root.zonesKnown
            pixelSize: chooserBox.width / 26
            text: qsTr("Or click here to select a different zone")
            onTouched: {
                console.debug("open zonedialog");
                zoneDialog.open();
            }
        }
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
            console.debug("ZONE SELECTED!", name);
            Player.selectZone(name);
        }
    }
}
