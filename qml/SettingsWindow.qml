// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

PlaceholderPage {
    objectName: "SettingsWindow"
    title: qsTr("Velunor Settings")
}
