// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "components"

/** The appliance is being updated; the user cannot leave this page. */
NoticePage {
    objectName: "UpdateInstalling"
    title: qsTr("Update in progress...")
    lines: [
        "",
        qsTr("Good news, your unit is being updated!"),
        qsTr("When the update is finished, your unit will restart."),
        ""
    ]
}
