// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Screen 1.0
import "components"

/** The greeting at start. */
Rectangle {
    id: root

    objectName: "Welcome"
    width: ScreenController.width
    height: ScreenController.height
    color: Theme.background

    CellIcon {
        objectName: "logo"
        anchors { left: parent.left; verticalCenter: parent.verticalCenter }
        width: 0.5 * root.width
        height: 0.8 * root.height
        source: "../images/Velunor_logo_v020-07.png"
    }

    FittedText {
        objectName: "greeting"
        anchors {
            centerIn: parent
            horizontalCenterOffset: 0.2 * root.width
            verticalCenterOffset: -0.2 * root.height
        }
        width: 0.4 * root.width
        height: 0.2 * root.height
        font.pixelSize: root.width / 16
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Welcome!")
    }

    FittedText {
        objectName: "motto"
        anchors {
            centerIn: parent
            horizontalCenterOffset: 0.2 * root.width
            verticalCenterOffset: -0.1 * root.height
        }
        width: 0.2 * root.width
        height: 0.1 * root.height
        color: Theme.secondaryText
        font.pixelSize: root.width / 38
        horizontalAlignment: Text.AlignHCenter
        text: qsTr("Enjoy the music")
    }
}
