// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** A cell with an icon in its middle. */
LayoutBox {
    id: root

    /** Address of the icon. */
    property alias source: icon.source
    /** Side of the icon as a part of the cell's shorter side. */
    property real iconFraction: 1
    /** 1 unless set. */
    property alias iconOpacity: icon.opacity
    /** Hides the icon alone; the cell stays. */
    property bool iconVisible: true

    Image {
        id: icon

        readonly property int side: Math.round(root.iconFraction * Math.min(root.width, root.height))

        objectName: "icon"
        anchors.centerIn: parent
        width: side
        height: side
        sourceSize: Qt.size(side, side)
        fillMode: Image.PreserveAspectFit
        visible: root.iconVisible
    }
}
