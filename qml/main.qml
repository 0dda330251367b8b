// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtQuick.Window 2.15
import Velunor.Navigation 1.0
import Velunor.Screen 1.0
import "components"

/** The window: one page per screen, of which only the one on view is alive. */
Window {
    id: root

    /** The pages, by the names of their files without ".qml". */
    property var screenList: [
        "Welcome",
        get_player_window(ScreenController.width),
        "SettingsWindow",
        "RoonConnectionFailure",
        "ScreenSaver",
        "Clock",
        "RoonZoneNotFound",
        "UpdateInstalling"
    ]
    /** The page on view; for a name that is not in the list there is none. */
    property string currentScreen: "Welcome"

    // Deliberate: the width is not used; layouts of their own for other widths would be chosen here.
    function get_player_window(width) {
        console.info("get_player_window() RoonPlayerWindow2");
        return "RoonPlayerWindow2";
    }

    width: ScreenController.width
    height: ScreenController.height
    visible: true
    color: Theme.background

    Connections {
        target: Navigation

        function onSetScreen(newScreen) {
            console.debug("onSetScreen() " + newScreen);
            if (root.currentScreen !== newScreen)
                root.currentScreen = newScreen;
        }
    }

    // The window's content is sized only when the window is shown; the rotator wants its size from the start.
    Item {
        width: root.width
        height: root.height

        ScreenRotator {
            id: rotator

            objectName: "rotator"
            isSwapped: ScreenController.swapped
            isRotated: ScreenController.rotated

            Repeater {
                model: root.screenList

                Loader {
                    id: ld

                    function loadIfNotLoaded() {
                        if (visible && !active)
                            active = true;
                    }

                    // A page that is left while it is being made is finished first: the engine never frees a page that
                    // it was kept from finishing.
                    function unloadIfHidden() {
                        if (!visible && status !== Loader.Loading)
                            active = false;
                    }

                    objectName: "loader" + modelData
                    anchors.fill: parent
                    active: false
                    asynchronous: true
                    visible: root.currentScreen === modelData
                    source: modelData + ".qml"
                    onVisibleChanged: {
                        loadIfNotLoaded();
                        if (visible)
                            Navigation.screenChanged(root.currentScreen);
                        else
                            unloadIfHidden();
                    }
                    onLoaded: Qt.callLater(unloadIfHidden)
                    // Deliberate: the sources never change, so pages come without the slide.
                    onSourceChanged: {
                        if (status === Loader.Ready)
                            animation.start();
                    }

                    Component.onCompleted: {
                        console.debug("screen properties:", Screen.height, Screen.width,
                                      Screen.desktopAvailableHeight, Screen.desktopAvailableWidth);
                        loadIfNotLoaded();
                    }

                    NumberAnimation {
                        id: animation

                        objectName: "slideIn"
                        target: ld.item
                        property: "x"
                        from: root.width
                        to: 0
                        duration: 600
                        easing.type: Easing.OutCubic
                    }
                }
            }
        }
    }
}
