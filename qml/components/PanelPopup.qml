// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "."

/**
 * A modal panel in the middle of the screen. It lives in the window's overlay, outside the rotated area of the pages,
 * so it turns its panel itself. It closes by a touch beside it, when its timer runs out, and when its page goes.
 */
T.Popup {
    id: root

    /** What lies on the panel, and is turned with it. */
    default property alias content: panel.data

    // Corners and frame of the panel.
    property alias radius: panelBackground.radius
    property alias border: panelBackground.border

    // Size of the panel in pixels, before it is turned.
    property real panelWidth
    property real panelHeight

    /** Whether the screen is mounted turned. */
    property bool isRotated: false
    /** Degrees, clockwise, by which the panel is turned while `isRotated` is set. */
    property int screenRotation: 0
    /** Whether the page that the pop-up belongs to is on view. */
    property bool pageVisible: true
    /** Whether the panel is turned by 90 or 270 degrees. */
    readonly property bool lyingOnSide: isRotated && Math.abs(screenRotation) % 180 === 90

    /** Keeps the pop-up open until the timer is restarted. */
    function stopCloseTimer() {
        closeTimer.stop();
    }

    /**
     * Has the pop-up close after `Theme.popupTimeout`, unless this is called again; opening it does so, too. Nothing
     * happens while it is closed: late events, such as the release of a slider that goes with it, come here as well.
     */
    function restartCloseTimer() {
        if (opened)
            closeTimer.restart();
    }

    parent: T.Overlay.overlay
    anchors.centerIn: T.Overlay.overlay
    // A touch beside the pop-up's own rectangle closes it, so that rectangle has to be where the turned panel is.
    width: lyingOnSide ? panelHeight : panelWidth
    height: lyingOnSide ? panelWidth : panelHeight
    padding: 0
    modal: true
    dim: false
    onOpened: restartCloseTimer()
    onClosed: stopCloseTimer()
    onPageVisibleChanged: {
        if (!pageVisible)
            close();
    }

    contentItem: Item {
        Item {
            id: panel

            objectName: "panel"
            anchors.centerIn: parent
            width: root.panelWidth
            height: root.panelHeight
            rotation: root.isRotated ? root.screenRotation : 0

            Rectangle {
                id: panelBackground

                anchors.fill: parent
                color: Theme.popupPanel
                opacity: Theme.popupOpacity
            }
        }
    }

    Timer {
        id: closeTimer

        objectName: "closeTimer"
        interval: Theme.popupTimeout
        onTriggered: root.close()
    }
}
