// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import Velunor.Navigation 1.0
import "components"

/** The remote-control service or the core is missing. */
NoticePage {
    objectName: "RoonConnectionFailure"
    title: qsTr("Connection Failure")
    lines: [
        qsTr("It seems there's a problem with the connection."),
        qsTr("• Is <b>Roon Core</b> running?"),
        // Deliberate: the capital "In".
        qsTr("• Is the <b>Velunor Extension</b> enabled In <b>Roon</b>?")
    ]

    TouchArea {
        onTouched: {
            console.info("onClicked()");
            Navigation.cycleDisplayOutput();
        }
    }
}
