// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Navigation 1.0
import "components"

/** A dark screen that a touch wakes. */
Rectangle {
    objectName: "ScreenSaver"
    // Deliberate: a size of its own; the loader stretches it over the whole panel, so that a touch wakes it anywhere.
    width: 800
    height: 480
    color: Theme.background

    TouchArea {
        onTouched: {
            console.info("onClicked()");
            Navigation.leaveScreenSaver();
        }
    }
}
