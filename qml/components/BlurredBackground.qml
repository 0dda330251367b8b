// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import QtGraphicalEffects 1.15

/** A dim, blurred copy of a picture that fills the whole box. */
Item {
    id: root

    /** Address of the picture. */
    property alias source: picture.source
    /** Whether the blurred copy is shown; without it there is nothing to see. */
    property bool blurred: true

    Image {
        id: picture

        objectName: "backgroundPicture"
        anchors.fill: parent
        visible: false
        // The provider keeps the last picture itself; Qt's cache would keep a logo that stood in for a failed fetch.
        cache: false
        fillMode: Image.PreserveAspectCrop
        onStatusChanged: {
            if (status === Image.Ready)
                console.debug("imageBlurredBackground::onStatusChanged() img loaded");
            else if (status === Image.Error)
                console.error("imageBlurredBackground::onStatusChanged() ERROR!");
        }
    }

    Loader {
        objectName: "blur"
        anchors.fill: parent
        active: root.blurred
        sourceComponent: GaussianBlur {
            source: picture
            opacity: 0.2
            deviation: 9
            radius: 32
            samples: 16
            // Computed once per picture, not on every frame in which anything moves.
            cached: true
        }
    }
}
