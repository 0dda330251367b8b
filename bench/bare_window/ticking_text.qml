// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15

Window {
    width: 800
    height: 480
    visible: true
    color: "black"

    Text {
        property int seconds: 0

        anchors.centerIn: parent
        color: "white"
        text: "Second " + seconds

        Timer {
            interval: 1000
            repeat: true
            running: true
            onTriggered: ++parent.seconds
        }
    }
}
