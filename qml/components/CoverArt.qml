// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** The framed cover. */
Rectangle {
    id: root

    /** Address of the cover; the whole of it is fitted into the frame. */
    property alias source: picture.source

    /** A tap anywhere on it, the frame included. */
    signal touched()

    color: Theme.invisible
    radius: 1
    border.width: 4
    border.color: Theme.coverBorder

    Image {
        id: picture

        objectName: "coverPicture"
        anchors.fill: parent
        anchors.margins: 4
        // The provider keeps the last picture itself; Qt's cache would keep a logo that stood in for a failed fetch.
        cache: false
        fillMode: Image.PreserveAspectFit
        smooth: false
    }

    TouchArea {
        onTouched: root.touched()
    }
}
