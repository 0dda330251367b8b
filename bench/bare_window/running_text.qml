// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15

Window {
    id: root

    width: 800
    height: 480
    visible: true
    color: "black"

    Text {
        id: text

        anchors.verticalCenter: parent.verticalCenter
        color: "white"
        text: "One text"

        NumberAnimation on x {
            from: root.width
            to: -text.width
            duration: 18000
            loops: Animation.Infinite
        }
    }
}
