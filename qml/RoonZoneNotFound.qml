// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

PlaceholderPage {
    objectName: "RoonZoneNotFound"
    title: qsTr("Zone Not Found")
}
