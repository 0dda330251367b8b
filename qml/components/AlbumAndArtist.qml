// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** Whose record it is: the album above the artist, each in one half. */
Item {
    id: root

    /** Plain text, of any length. */
    property alias album: albumLine.text
    /** Pixel size of the album. */
    property alias albumSize: albumLine.pixelSize
    /** Plain text, of any length. */
    property alias artist: artistLine.text
    /** Pixel size of the artist. */
    property alias artistSize: artistLine.pixelSize
    /** Whether the boxes show their outlines, for work on the layout. */
    property bool outlined: false
    /** Whether texts that do not fit scroll; otherwise they are cut. */
    property bool scrollingEnabled: true

    ScrollingLine {
        id: albumLine

        objectName: "album"
        anchors { left: parent.left; right: parent.right; top: parent.top }
        height: 0.5 * root.height
        outlined: root.outlined
        textColor: Theme.secondaryText
        scrollDuration: 8000
        scrollingEnabled: root.scrollingEnabled
    }

    ScrollingLine {
        id: artistLine

        objectName: "artist"
        anchors { left: parent.left; right: parent.right; top: albumLine.bottom }
        height: 0.5 * root.height
        outlined: root.outlined
        textColor: Theme.primaryText
        scrollDuration: 10000
        scrollingEnabled: root.scrollingEnabled
    }
}
