// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick 2.15

QtObject {
    property bool coreDetected: true
    property string serverUrl: "192.0.2.1:9100"
    property string ipAddress: "192.0.2.10"
    property string localHostName: "velunor"
}
