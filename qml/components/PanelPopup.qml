// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Templates 2.15 as T
import "."

/**
 * A modal panel in the middle of the screen.  It lives in the window's overlay, outside the rotated area of the
 * pages, so it turns its panel itself.  It closes when nobody touches it, and when its page goes.
 */
T.Popup {
    id: root

    default property alias content: panel.data
    property alias radius: panelBackground.radius
    property alias border: panelBackground.border
    property real panelWidth
    property real panelHeight
    property bool isRotated: false
    /** Degrees by which the panel is turned while `isRotated` is set. */
    property int screenRotation: 0
    /** Whether the page that the pop-up belongs to is on view. */
    property bool pageVisible: true
    readonly property bool lyingOnSide: isRotated && Math.abs(screenRotation) % 180 === 90

    function stopCloseTimer() {
        closeTimer.stop();
    }

    /** Late events, such as the release of a slider that goes with the pop-up, find it closed. */
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
