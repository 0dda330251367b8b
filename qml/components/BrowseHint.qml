// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."
import "format.js" as Format

/** Where the appliance's web interface is found. As high as its first line; the second one is below it. */
Item {
    id: root

    /** The appliance's host name, without ".local". */
    property string hostName
    /** The appliance's IPv4 address; empty where there is none. */
    property string address
    /** Whether the boxes show their outlines, for work on the layout. */
    property bool outlined: false

    NoticeLine {
        id: hint

        objectName: "hint"
        anchors.fill: parent
        outlined: root.outlined
        text: qsTr("For configuring <b>Velunor</b> you can point your browser to:")
    }

    NoticeLine {
        objectName: "addresses"
        anchors { left: hint.left; right: hint.right; top: hint.bottom }
        height: hint.height
        outlined: root.outlined
        text: "<b>http://" + Format.escaped(root.hostName) + ".local</b> " + qsTr("or")
              + " <b>http://" + Format.escaped(root.address) + "</b>"
    }
}
