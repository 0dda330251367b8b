// SPDX-License-Identifier: GPL-3.0-or-later
pragma Singleton

import QtQuick 2.15

QtObject {
    property var zones: []
}
