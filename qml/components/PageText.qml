// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick 2.15
import "."

/** One line of plain text in the family of all pages. Whatever comes from outside is never taken for markup. */
Text {
    color: Theme.primaryText
    font.family: Theme.fontFamily
    textFormat: Text.PlainText
    verticalAlignment: Text.AlignVCenter
}
