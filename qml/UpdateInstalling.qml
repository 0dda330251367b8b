// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

PlaceholderPage {
    objectName: "UpdateInstalling"
    title: qsTr("Update in progress...")
}
