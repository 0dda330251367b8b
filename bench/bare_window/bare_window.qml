// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15

Window {
    width: 800
    height: 480
    visible: true
    color: "black"

    Text {
        anchors.centerIn: parent
        color: "white"
        text: "One text"
    }
}
