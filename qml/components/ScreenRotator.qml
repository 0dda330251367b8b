// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15
import Velunor.Screen 1.0

/** The area of the pages, turned for a panel that is mounted rotated and with its sides swapped where needed. */
Item {
    id: root

    /** Whether the pages are as wide as the panel is high, and the reverse. */
    property bool isSwapped: false
    /** Whether the pages are turned by `ScreenController.rotation`; the window is then full-screen from the start. */
    property bool isRotated: false

    anchors.centerIn: parent
    rotation: isRotated ? ScreenController.rotation : 0
    width: isSwapped ? parent.height : parent.width
    height: isSwapped ? parent.width : parent.height

    Component.onCompleted: {
        if (!isRotated)
            return;
        console.info("ScreenRotator width :" + width);
        console.info("ScreenRotator height:" + height);
        console.info("ScreenRotator angle :" + rotation);
        // On a turned panel the page's size is not the panel's, so the window takes what the panel has.
        Window.window.showFullScreen();
    }
}
