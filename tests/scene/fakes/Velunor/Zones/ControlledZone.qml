// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15

QtObject {
    property string zoneId: "z1"
    property bool shown: true
}
